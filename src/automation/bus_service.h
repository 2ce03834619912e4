// The automation object on the session bus.
#pragma once

#include "automation/connect.h"

#include <QDBusAbstractAdaptor>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusServiceWatcher>

#include <optional>

namespace automation {

inline constexpr auto kBusName = "com.noravex.TXSGraphicsLib";
inline constexpr auto kObjectPath = "/com/noravex/TXSGraphicsLib/Connect";

class BusService;

// The interface that clients see; docs/automation.md tells of it.
class ConnectInterface : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.noravex.TXSGraphicsLib.Connect")

  public:
    // Belongs to `connect`, whose signal it passes on.
    ConnectInterface(Connect& connect, BusService& service);

  public slots:
    void ShowGraficsLib(uint clientWindow, const QDBusMessage& message);
    void Terminate(const QDBusMessage& message);

  signals:
    void PictureSelected(const QString& path);

  private:
    BusService& service_;
};

// Offers a Connect to other programs for as long as the program runs, and tells it when its client
// has left the bus.
class BusService : public QObject {
    Q_OBJECT

  public:
    // `connect` must outlive the object.
    explicit BusService(Connect& connect);

    // Exports the object and then takes the bus name, so that the first caller finds the object.
    // Returns why that is impossible, in English, or nothing.
    std::optional<QString> start();

    void show(std::uint32_t clientWindow, const QDBusMessage& call);
    void terminate(const QDBusMessage& call);

    // Answers the calls that ended the program and gives the name back.
    void stop();

  signals:
    // No call can come any more.
    void busLost();

  private:
    void watch(const QString& client);

    Connect& connect_;
    QDBusConnection bus_;
    QDBusServiceWatcher clients_;
    QList<QDBusMessage> endingCalls_;
};

} // namespace automation
