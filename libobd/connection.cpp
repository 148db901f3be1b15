#include "connection.h"

#include "clock.h"
#include "idisconnectlistener.h"
#include "ilogger.h"
#include "trlog.h"

#include <QDeadlineTimer>

#include <algorithm>
#include <cassert>

namespace Obd {

Connection::Connection(IMessageBus* bus)
    : bus_(bus)
    , connected_(false)
    , delimiter_(0)
    , listener_(nullptr)
    , stop_(false)
{
    assert(bus_ != 0 && "bus_ != 0");
}

Connection::~Connection()
{
    stop_ = true;
    readThread_.join();
    if (bus_) {
        bus_->close();
        delete bus_;
    }
}

IMessageBus::OpenStatus Connection::open(IDisconnectListener* listener)
{
    if (connected_)
        return IMessageBus::OS_OK;

    // A read task that ended on a lost link may still be closing the bus.
    readThread_.join();
    IMessageBus::OpenStatus status = bus_->open();
    if (status != IMessageBus::OS_OK) {
        OBD_ERROR << "Failed to connect (" << static_cast<int>(status)
                  << "): " << bus_->errorString();
        return status;
    }
    listener_ = listener;
    connected_ = true;
    stop_ = false;
    readThread_.start(&Connection::readTask, this);
    return IMessageBus::OS_OK;
}

void Connection::close()
{
    if (!connected_)
        return;
    stop_ = true;
    readThread_.join();
    disconnectCleanup();
}

bool Connection::isConnected() const
{
    return connected_;
}

int Connection::write(const std::vector<unsigned char>& data)
{
    IMessageBus::WriteStatus status;
    {
        CLock lock(busMutex_);
        if (!connected_)
            return 1;
        status = bus_->write(data);
    }
    if (status == IMessageBus::WS_OK) {
        CLock lock(queueMutex_);
        for (ILogger* logger : loggers_)
            logger->onDataSent(data);
        return 0;
    }
    OBD_ERROR << "Failed to write socket: " << bus_->errorString();
    close();
    return 1;
}

int Connection::read(std::vector<unsigned char>& message, unsigned int timeoutMs)
{
    if (!connected_)
        return 2;

    CLock lock(queueMutex_);
    if (queue_.empty()) {
        if (timeoutMs == 0)
            return 1;
        // Spurious wake-ups must not cut the wait short.
        QDeadlineTimer deadline(static_cast<qint64>(timeoutMs));
        while (queue_.empty()) {
            if (!connected_)
                return 2; // the link went while we waited
            qint64 left = deadline.remainingTime();
            if (left <= 0 || (!queueCondition_.wait(queueMutex_, static_cast<unsigned long>(left))
                              && queue_.empty()))
                return connected_ ? 1 : 2;
        }
    }
    message.swap(queue_.front());
    queue_.pop_front();
    for (ILogger* logger : loggers_)
        logger->onDataReceived(message);
    return 0;
}

void Connection::setDelimiter(unsigned char delimiter)
{
    delimiter_ = delimiter;
}

std::string Connection::errorString() const
{
    return bus_->errorString();
}

void Connection::addLogger(ILogger* logger)
{
    CLock lock(queueMutex_);
    loggers_.push_back(logger);
}

void Connection::removeLogger(ILogger* logger)
{
    CLock lock(queueMutex_);
    std::vector<ILogger*>::iterator found = std::find(loggers_.begin(), loggers_.end(), logger);
    if (found != loggers_.end())
        loggers_.erase(found);
}

void Connection::readTask(void* self)
{
    static_cast<Connection*>(self)->runReadTask();
}

void Connection::runReadTask()
{
    OBD_DEBUG << "Read task started";

    std::vector<unsigned char> pending;
    size_t scanned = 0;              // bytes of pending known to hold no delimiter
    unsigned char scannedFor = delimiter_;
    while (!stop_) {
        // The bus appends, so it reads straight into the pending run.
        IMessageBus::ReadStatus status = bus_->read(pending);
        if (status == IMessageBus::RS_ERROR) {
            OBD_ERROR << "Failed to read socket: " << bus_->errorString();
            stop_ = true;
            disconnectCleanup();
            break;
        }
        if (status == IMessageBus::RS_DISCONNECTED) {
            OBD_DEBUG << "Disconnected by server";
            stop_ = true;
            disconnectCleanup();
            break;
        }
        if (status != IMessageBus::RS_OK)
            CThread::sleep(1);

        if (pending.empty())
            continue;
        const unsigned char delimiter = delimiter_;
        if (delimiter != scannedFor) {
            scannedFor = delimiter;
            scanned = 0;
        }
        if (std::find(pending.begin() + scanned, pending.end(), delimiter) != pending.end()) {
            // The whole run goes, including whatever followed the delimiter in its chunk.
            {
                CLock lock(queueMutex_);
                queue_.push_back(std::move(pending));
                queueCondition_.wakeOne();
            }
            pending = std::vector<unsigned char>();
            scanned = 0;
        } else if (pending.size() > MAX_PENDING) {
            // A peer that never prompts must not grow this without bound: drop the run
            // and keep reading; the next delimiter still ends a message, so the reader
            // stays in step with the replies.
            OBD_ERROR << "No delimiter in " << pending.size() << " bytes, dropped";
            pending.clear();
            scanned = 0;
        } else {
            scanned = pending.size();
        }
    }
}

void Connection::disconnectCleanup()
{
    bool wasConnected;
    {
        CLock lock(busMutex_);
        wasConnected = connected_.exchange(false);
        bus_->close();
    }
    {
        CLock lock(queueMutex_);
        queue_.clear();
        queueCondition_.wakeAll(); // a waiting reader learns at once
    }
    // close() and a read task that saw the peer go may both get here: tell once.
    IDisconnectListener* listener = listener_.load();
    if (wasConnected && listener)
        listener->onDisconnected();
}

} // namespace Obd
