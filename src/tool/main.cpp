// stgtool: the library for scripts.
#include "platform/terminal.h"
#include "tool/command.h"

#include <QGuiApplication>
#include <QLoggingCategory>

#include <algorithm>
#include <array>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

namespace {

// Only a command that paints text needs the fonts, and their start takes longer than most commands.
std::unique_ptr<QCoreApplication> makeApplication(const std::vector<std::string>& commandLine,
                                                  int& argc, char** argv) {
    constexpr std::array kPainting{"render", "thumbnail", "convert", "catalogue"};
    if (std::find_first_of(commandLine.begin(), commandLine.end(), kPainting.begin(),
                           kPainting.end()) == commandLine.end()) {
        return std::make_unique<QCoreApplication>(argc, argv);
    }
    qputenv("QT_QPA_PLATFORM", "offscreen"); // works without a display, and shows nothing on one
    return std::make_unique<QGuiApplication>(argc, argv);
}

} // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> commandLine(argv + std::min(argc, 1), argv + argc);
    int ownNameOnly = std::min(argc, 1); // the other words are ours, not the toolkit's
    QLoggingCategory::setFilterRules(QStringLiteral("*=false")); // stderr is for our errors
    const auto application = makeApplication(commandLine, ownNameOnly, argv);
    std::ios::sync_with_stdio(false);
    const bool isTerminal = platform::isTerminal(platform::StandardStream::Error);
    tool::Console console{std::cout, std::cerr,
                          isTerminal ? tool::ErrorStream::Terminal : tool::ErrorStream::Elsewhere};
    return static_cast<int>(tool::run(commandLine, console));
}
