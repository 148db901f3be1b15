#ifndef HARMATTAN_SETTINGSVIEWMODEL_H
#define HARMATTAN_SETTINGSVIEWMODEL_H

#include "iviewmodel.h"

#include <QObject>
#include <QPointer>
#include <QString>
#include <QVariantList>

namespace Obd {
class SettingsModel;
}

namespace Harmattan {

class NavigationModel;

// The settings screen: connection method, Bluetooth device, IP address and
// port, serial device and baud rate, whether the adapter is reset, metric or
// imperial units and the dashboard's two gauges. Input is checked before it reaches the settings model.
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
    // The PIDs a dashboard gauge can show, each {pid, text: "0C Engine RPM"}:
    // every live PID with a number.
    static QVariantList gaugeChoices();

public slots:
    void onViewConnectionMethodChanged(QString method);
    void onViewIpAddressChanged(QString address);
    void onViewIpPortChanged(QString port);
    void onViewSerialDeviceChanged(QString device);
    void onViewSerialBaudRateChanged(QString rate);
    void onViewUnitSystemChanged(QString units);
    void onViewGaugeChosen(int gauge, int pid);
    void onViewNoResetToggled(bool noReset);
    void onShowBluetoothSearch();
    void onViewDestroyed();

private slots:
    void updateConnectionMethod();
    void updateIpAddress();
    void updateIpPort();
    void updateBluetoothDevice();
    void updateSerial();
    void updateUnitSystem();
    void updateGauges();
    void updateNoReset();

private:
    void setViewProperty(const char* name, const QVariant& value);

    Obd::SettingsModel* m_settings;
    NavigationModel* m_navigationModel;
    QPointer<QObject> m_view;
};

} // namespace Harmattan

#endif
