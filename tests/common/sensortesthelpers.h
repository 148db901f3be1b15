#ifndef TEST_SENSORTESTHELPERS_H
#define TEST_SENSORTESTHELPERS_H

#include "ecu.h"
#include "measurableparameter.h"
#include "sensorinfo.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QThread>

#include <atomic>
#include <map>
#include <memory>
#include <string>
#include <vector>

// Runs the event loop until pred() holds or timeoutMs passed.
template <class Pred>
bool waitFor(Pred pred, int timeoutMs = 10000)
{
    QElapsedTimer timer;
    timer.start();
    while (!pred()) {
        if (timer.elapsed() > timeoutMs)
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        QThread::msleep(2);
    }
    return true;
}

// Runs the event loop for ms milliseconds.
inline void spin(int ms)
{
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < ms) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        QThread::msleep(2);
    }
}

// A measurable PID with scripted descriptors. Decoding stores data byte A
// as the metric value of every info and 2 x A as the imperial one, so the
// values come through the real transporter from a scripted adapter reply.
// The values can also be set directly.
class FakeMeasurable : public Obd::MeasurableParameter
{
public:
    struct Row
    {
        std::string name;
        unsigned int metricUnit;
        unsigned int imperialUnit;
        double metricMinimum;
        double metricMaximum;
        double imperialMinimum;
        double imperialMaximum;
        Obd::ValueFormaterPtr formatter;
    };

    FakeMeasurable(unsigned char pid, const std::string& name, const std::vector<Row>& rows)
        : m_pid(pid)
        , m_name(name)
    {
        for (const Row& row : rows) {
            Obd::SensorInfo* info = new Obd::SensorInfo(row.name, row.formatter ? 1 : 0);
            info->addInfo(Obd::US_METRIC, row.metricUnit, row.metricMinimum, row.metricMaximum);
            info->addInfo(Obd::US_IMPERIAL, row.imperialUnit, row.imperialMinimum,
                          row.imperialMaximum);
            m_infos.push_back(info);
            m_formatters.push_back(row.formatter);
        }
        ++liveCount();
    }

    ~FakeMeasurable() override
    {
        for (Obd::SensorInfo* info : m_infos)
            delete info;
        --liveCount();
    }

    static std::atomic<int>& liveCount()
    {
        static std::atomic<int> count(0);
        return count;
    }

    void setValues(unsigned int ecuId, const std::vector<float>& metric,
                   const std::vector<float>& imperial)
    {
        m_values[ecuId] = Values{metric, imperial};
    }

    // Drops formatters from the end, to check the formatter-count guard.
    void dropFormatters(size_t count)
    {
        m_formatters.resize(m_formatters.size() > count ? m_formatters.size() - count : 0);
    }

    unsigned char getPid() const override { return m_pid; }
    using Obd::MeasurableParameter::getName;
    std::string getName() const override { return m_name; }

    void getSensorInfos(std::vector<Obd::SensorInfo*>& list) const override
    {
        list.insert(list.end(), m_infos.begin(), m_infos.end());
    }

    void getFormattedValues(const Obd::Ecu& ecu, Obd::UnitSystem unitSystem,
                            std::vector<std::string>& list) const override
    {
        std::vector<float> values;
        getValues(ecu, unitSystem, values);
        for (size_t i = 0; i < values.size(); ++i) {
            if (i < m_formatters.size() && m_formatters[i])
                list.push_back(m_formatters[i]->format(unitSystem, values[i]));
            else
                list.push_back(std::to_string(values[i]));
        }
    }

    bool decode(unsigned int ecuId, const std::vector<unsigned char>& data) override
    {
        if (data.empty())
            return false;
        std::vector<float> metric(m_infos.size(), static_cast<float>(data[0]));
        std::vector<float> imperial(m_infos.size(), 2.0f * static_cast<float>(data[0]));
        setValues(ecuId, metric, imperial);
        return true;
    }

    void getValues(const Obd::Ecu& ecu, Obd::UnitSystem unitSystem,
                   std::vector<float>& list) const override
    {
        auto it = m_values.find(ecu.getId());
        if (it == m_values.end())
            return;
        const std::vector<float>& values =
            unitSystem == Obd::US_IMPERIAL ? it->second.imperial : it->second.metric;
        list.insert(list.end(), values.begin(), values.end());
    }

    void getFormatters(std::vector<Obd::ValueFormaterPtr>& list) const override
    {
        list.insert(list.end(), m_formatters.begin(), m_formatters.end());
    }

private:
    struct Values
    {
        std::vector<float> metric;
        std::vector<float> imperial;
    };

    unsigned char m_pid;
    std::string m_name;
    std::vector<Obd::SensorInfo*> m_infos;
    std::vector<Obd::ValueFormaterPtr> m_formatters;
    std::map<unsigned int, Values> m_values;
};

// The adapter's reply text to mode 01 PID pid carrying the byte value,
// headers off: "41 0D 3C".
std::string replyFor(unsigned char pid, unsigned char value);
// The command text the transporter sends for mode 01 PID pid: "010d".
std::string commandFor(unsigned char pid);

#endif
