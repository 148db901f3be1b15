#ifndef HARMATTAN_BLUETOOTHSEARCHVIEWMODEL_H
#define HARMATTAN_BLUETOOTHSEARCHVIEWMODEL_H

#include "iviewmodel.h"

#include <QBluetoothDeviceDiscoveryAgent>
#include <QBluetoothDeviceInfo>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>

namespace Obd {
class SettingsModel;
}

namespace Harmattan {

// The Bluetooth search screen: lists nearby devices; the chosen one becomes
// the adapter in the settings.
class BluetoothSearchViewModel : public QObject, public IViewModel
{
    Q_OBJECT

public:
    static const char* const NO_ADAPTER;
    static const char* const SEARCHING;
    static const char* const NOTHING_FOUND;

    explicit BluetoothSearchViewModel(Obd::SettingsModel* settings, QObject* parent = nullptr);
    ~BluetoothSearchViewModel() override;

    void setView(QObject* view) override;
    void setContext(QQmlContext* context) override;

    // Replaces what a search found; for screens and tests without a radio.
    void setDevices(const QList<QBluetoothDeviceInfo>& devices);

public slots:
    void onSearchRequested();
    void onDeviceSelected(int index);
    void onViewDestroyed();

private slots:
    void onDeviceDiscovered(const QBluetoothDeviceInfo& device);
    void onSearchFinished();
    void onSearchError(QBluetoothDeviceDiscoveryAgent::Error error);

private:
    void publishDevices();
    void setStatus(const QString& text, bool searching);
    void setViewProperty(const char* name, const QVariant& value);

    Obd::SettingsModel* m_settings;
    QPointer<QObject> m_view;
    QBluetoothDeviceDiscoveryAgent* m_agent;
    QList<QBluetoothDeviceInfo> m_devices;
    QString m_status;
    bool m_searching;
    bool m_adapterAvailable;
};

} // namespace Harmattan

#endif
