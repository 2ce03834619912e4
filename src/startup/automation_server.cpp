#include "startup/automation_server.h"

#include "app/unattended.h"
#include "automation/bus_service.h"
#include "automation/connect.h"
#include "platform/temporary_folder.h"
#include "startup/system_requests.h"

#include <QCoreApplication>

#include <cstdio>
#include <cstdlib>

namespace startup {
namespace {

constexpr int kExitFailure = 1;

// Open dialogs would go on with what they were about to do if they were left the usual way.
[[noreturn]] void endAtOnce(automation::BusService& service, bool hasClient) {
    platform::wipeTemporaryFolder(hasClient ? platform::CopiedPicture::Keep
                                            : platform::CopiedPicture::Remove);
    service.stop();
    std::fflush(nullptr);
    std::_Exit(EXIT_SUCCESS);
}

} // namespace

int runAutomationServer() {
    automation::Connect library;
    automation::BusService service(library);
    QObject::connect(&library, &automation::Connect::terminated, &library,
                     [&] { endAtOnce(service, library.hasClient()); });
    QObject::connect(&service, &automation::BusService::busLost, &library, [&library] {
        app::tell(QStringLiteral("the session bus has gone"));
        library.end();
    });
    if (const auto reason = service.start()) {
        app::tell(*reason);
        return kExitFailure;
    }
    const SystemRequests requests([&library] { library.end(); },
                                  [&library] { library.saveSettings(); });
    return QCoreApplication::exec();
}

} // namespace startup
