#include "machine.h"

#include <fstream>
#include <sstream>
#include <sys/utsname.h>
#include <thread>
#include <unistd.h>

namespace benchmarks {
namespace {

std::string processor() {
    std::ifstream in("/proc/cpuinfo");
    for (std::string line; std::getline(in, line);) {
        if (line.starts_with("model name")) {
            return line.substr(line.find(':') + 2);
        }
    }
    return "unknown processor";
}

// The mount whose folder is the longest that `folder` lies in: file system, device, options.
std::string mountOf(const std::filesystem::path& folder) {
    std::ifstream in("/proc/self/mounts");
    const std::string wanted = std::filesystem::canonical(folder).string() + "/";
    std::string found = "unknown file system";
    std::size_t longest = 0;
    for (std::string line; std::getline(in, line);) {
        std::istringstream words(line);
        std::string device;
        std::string place;
        std::string type;
        std::string options;
        words >> device >> place >> type >> options;
        const std::string prefix = place == "/" ? place : place + "/";
        if (wanted.starts_with(prefix) && prefix.size() >= longest) {
            longest = prefix.size();
            found = type;
            found.append(" on ").append(device).append(" (").append(options).append(")");
        }
    }
    return found;
}

} // namespace

std::string describeMachine(const std::filesystem::path& folder) {
    utsname system = {};
    uname(&system);
    const auto memory = static_cast<unsigned long long>(sysconf(_SC_PHYS_PAGES)) *
                        static_cast<unsigned long long>(sysconf(_SC_PAGESIZE));
    std::ostringstream out;
    out << processor() << ", " << std::thread::hardware_concurrency() << " cores, "
        << (memory >> 20U) << " MiB\n"
        << system.sysname << " " << system.release << " " << system.machine << "\n"
        << mountOf(folder) << "\n";
    return out.str();
}

} // namespace benchmarks
