#include "automation/bus_service.h"

#include "app/message_box.h"

#include <QDBusConnectionInterface>
#include <QDBusError>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

#include <exception>

namespace automation {

ConnectInterface::ConnectInterface(Connect& connect, BusService& service)
    : QDBusAbstractAdaptor(&connect), service_(service) {
    setAutoRelaySignals(true);
}

void ConnectInterface::ShowGraficsLib(uint clientWindow, const QDBusMessage& message) {
    service_.show(clientWindow, message);
}

void ConnectInterface::Terminate(const QDBusMessage& message) {
    service_.terminate(message);
}

BusService::BusService(Connect& connect) : connect_(connect), bus_(QDBusConnection::sessionBus()) {
    new ConnectInterface(connect, *this); // belongs to `connect`
    clients_.setConnection(bus_);
    clients_.setWatchMode(QDBusServiceWatcher::WatchForUnregistration);
    QObject::connect(&clients_, &QDBusServiceWatcher::serviceUnregistered, &connect_,
                     &Connect::loseClient);
}

std::optional<QString> BusService::start() {
    if (!bus_.isConnected()) {
        return QStringLiteral("no session bus: ") + bus_.lastError().message();
    }
    bus_.connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"),
                 QStringLiteral("org.freedesktop.DBus.Local"), QStringLiteral("Disconnected"), this,
                 SIGNAL(busLost()));
    if (!bus_.registerObject(QLatin1String(kObjectPath), &connect_)) {
        return QStringLiteral("the object %1 cannot be offered on the session bus")
            .arg(QLatin1String(kObjectPath));
    }
    if (!bus_.registerService(QLatin1String(kBusName))) {
        return QStringLiteral("the name %1 on the session bus belongs to another program: %2")
            .arg(QLatin1String(kBusName), bus_.lastError().message());
    }
    return std::nullopt;
}

void BusService::show(std::uint32_t clientWindow, const QDBusMessage& call) {
    try {
        connect_.ShowGraficsLib(clientWindow);
    } catch (const std::exception& error) {
        call.setDelayedReply(true);
        bus_.send(call.createErrorReply(QDBusError::Failed, app::errorText(error)));
        return;
    }
    // Who names no window of his own may leave, as programs for a terminal do.
    watch(clientWindow == 0 ? QString() : call.service());
}

void BusService::watch(const QString& client) {
    clients_.setWatchedServices(client.isEmpty() ? QStringList() : QStringList(client));
    if (client.isEmpty()) {
        return;
    }
    // It may have left before it was watched.
    auto* answer = new QDBusPendingCallWatcher(
        bus_.interface()->asyncCall(QStringLiteral("NameHasOwner"), client), this);
    QObject::connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer, client] {
        const QDBusPendingReply<bool> isThere = *answer;
        if (isThere.isValid() && !isThere.value() && clients_.watchedServices().contains(client)) {
            connect_.loseClient();
        }
        answer->deleteLater();
    });
}

void BusService::terminate(const QDBusMessage& call) {
    call.setDelayedReply(true);
    endingCalls_.append(call);
    connect_.Terminate();
}

void BusService::stop() {
    for (const QDBusMessage& call : std::exchange(endingCalls_, {})) {
        bus_.send(call.createReply());
    }
    // The bus answers this after it has taken the replies.
    bus_.unregisterService(QLatin1String(kBusName));
}

} // namespace automation
