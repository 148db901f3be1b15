#ifndef HARMATTAN_SETTINGSVIEWMODEL_H
#define HARMATTAN_SETTINGSVIEWMODEL_H

#include "iviewmodel.h"

#include <QObject>
#include <QPointer>
#include <QString>

namespace Obd {
class SettingsModel;
}

namespace Harmattan {

class NavigationModel;

// The settings screen: connection method, Bluetooth device, IP address and
// port, serial device and baud rate, and metric or imperial units. Input is checked before it reaches the settings model.
class SettingsViewModel : public QObject, public IViewModel
{
    Q_OBJECT

public:
    static const char* const IP_ADDRESS_PROBLEM;
    static const char* const IP_ADDRESS_UNSET_PROBLEM;
    static const char* const IP_PORT_PROBLEM;
    static const char* const SERIAL_DEVICE_PROBLEM;
    static const char* const SERIAL_BAUD_RATE_PROBLEM;

    SettingsViewModel(Obd::SettingsModel* settings, NavigationModel* navigationModel,
                      QObject* parent = nullptr);

    void setView(QObject* view) override;
    void setContext(QQmlContext* context) override;

    // What is wrong with the text, or empty when it may be stored.
    static QString ipAddressProblem(const QString& address);
    static QString ipPortProblem(const QString& port);
    static QString serialDeviceProblem(const QString& device);
    static QString serialBaudRateProblem(const QString& rate);

    static QString methodText(int method);
    static QString unitSystemText(int unitSystem);

public slots:
    void onViewConnectionMethodChanged(QString method);
    void onViewIpAddressChanged(QString address);
    void onViewIpPortChanged(QString port);
    void onViewSerialDeviceChanged(QString device);
    void onViewSerialBaudRateChanged(QString rate);
    void onViewUnitSystemChanged(QString units);
    void onShowBluetoothSearch();
    void onViewDestroyed();

private slots:
    void updateConnectionMethod();
    void updateIpAddress();
    void updateIpPort();
    void updateBluetoothDevice();
    void updateSerial();
    void updateUnitSystem();

private:
    void setViewProperty(const char* name, const QVariant& value);

    Obd::SettingsModel* m_settings;
    NavigationModel* m_navigationModel;
    QPointer<QObject> m_view;
};

} // namespace Harmattan

#endif
