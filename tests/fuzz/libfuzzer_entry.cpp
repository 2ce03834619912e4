// One libFuzzer program for all targets: TXS_FUZZ_TARGET names the one to run.
#include "fuzz/target.h"

#include <QGuiApplication>

#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace {

const fuzz::Target* chosen = nullptr;

} // namespace

extern "C" int LLVMFuzzerInitialize(int* count, char*** arguments) {
    static const std::vector<fuzz::Target> targets = fuzz::allTargets();
    const char* name = std::getenv("TXS_FUZZ_TARGET");
    for (const fuzz::Target& target : targets) {
        chosen = name != nullptr && target.name == name ? &target : chosen;
    }
    if (chosen == nullptr) {
        std::fputs("TXS_FUZZ_TARGET must name a target\n", stderr);
        std::exit(2);
    }
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static const QGuiApplication application(*count, *arguments);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    chosen->use(std::as_bytes(std::span(data, size)));
    return 0;
}
