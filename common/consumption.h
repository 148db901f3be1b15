#ifndef OBD_CONSUMPTION_H
#define OBD_CONSUMPTION_H

#include "ecu.h"
#include "unitsystem.h"

#include <QObject>
#include <QTime>

class QTimer;

namespace Obd {

class AirFlowRate;
class IObdProxy;
class MeasurableParameter;
class ObdParameterUpdater;
class VehicleSpeed;

// Estimates the instantaneous fuel consumption of a petrol engine from the
// mass air flow (PID 0x10) and the vehicle speed (PID 0x0D). The two arrive
// at different moments, so the speed is extrapolated linearly to the moment
// of each air-flow reading.
//
// The stored field (getStoredConsumption) is the historical figure
// mpg x 235 with mpg = km/h x 710.7 / (g/s), unguarded. The public readings
// are true litres per 100 km (metric) and US miles per gallon (imperial):
// MPG = 7.107 x km/h / (g/s), l/100 km = 235.215 / MPG. They are 0, never
// inf or nan, when the estimated speed or the air flow is not positive or
// not finite.
//
// start() sets going a periodic refresh of both parameters through two
// updaters on the shared worker thread, against the proxy given with
// setProxy(): at every tick the speed is requested, then the air flow, each
// only if its previous request has come back. Every air-flow reading yields
// a consumption. Average and peak are kept per unit system over the defined
// readings only: the average is the running mean of that unit's readings
// and the peak their highest value (the worst l/100 km, the best MPG).
// Lives on the user-interface thread.
class Consumption : public QObject
{
    Q_OBJECT

public:
    struct Sample
    {
        QTime time;
        float value;
    };

    explicit Consumption(QObject* parent = nullptr);
    ~Consumption() override;

    // Not owned; may be changed while running.
    void setProxy(IObdProxy* proxy);
    // The ECU whose values are read. Until set: the proxy's first ECU when
    // there is one, else the ECU with id 0 (a link without headers).
    void setEcu(const Ecu& ecu);
    void setUpdateInterval(int ms);
    int getUpdateInterval() const;
    bool isRunning() const;

    Q_INVOKABLE void start();
    Q_INVOKABLE void stop();
    Q_INVOKABLE double consumption(Obd::UnitSystem system) const;
    Q_INVOKABLE double averageConsumption(Obd::UnitSystem system) const;
    Q_INVOKABLE double peakConsumption(Obd::UnitSystem system) const;

    // Feed readings taken at a known time (what the two slots do with the
    // current time and the parameters' values).
    void addSpeedSample(const QTime& time, float kmh);
    void addAirFlowSample(const QTime& time, float gramsPerSecond);

    float getStoredConsumption() const;
    float getEstimatedSpeed() const;
    float getAirFlow() const;
    Sample getPreviousSpeed() const;
    Sample getCurrentSpeed() const;
    Sample getPreviousAirFlow() const;
    Sample getCurrentAirFlow() const;

    // Milliseconds from a to b, across midnight when b is on the next day.
    static int msecsBetween(const QTime& a, const QTime& b);

signals:
    // After every air-flow reading.
    void changed();

public slots:
    void onAirFlowUpdated();
    void onSpeedUpdated();

private slots:
    void onTick();
    void onAirFlowDone(bool success);
    void onSpeedDone(bool success);

private:
    struct Reading
    {
        double current;
        double average;
        double peak;
        unsigned int count;
    };

    void estimateSpeed(const QTime& now);
    void computeConsumption();
    void updateReadings();
    bool readValue(MeasurableParameter* parameter, float& value);
    Ecu readingEcu() const;
    void createUpdaters();
    const Reading* readingFor(UnitSystem system) const;

    float m_consumption;
    Sample m_previousAirFlow;
    Sample m_currentAirFlow;
    Sample m_previousSpeed;
    Sample m_currentSpeed;
    AirFlowRate* m_airFlowParameter;
    VehicleSpeed* m_speedParameter;
    float m_airFlow;
    float m_estimatedSpeed;

    Reading m_metric;
    Reading m_imperial;
    IObdProxy* m_proxy;
    Ecu m_ecu;
    bool m_ecuSet;
    ObdParameterUpdater* m_airFlowUpdater;
    ObdParameterUpdater* m_speedUpdater;
    bool m_airFlowQueued;
    bool m_speedQueued;
    QTimer* m_timer;
};

} // namespace Obd

#endif
