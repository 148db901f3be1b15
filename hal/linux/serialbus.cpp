#include "serialbus.h"

#include "trlog.h"

#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <cassert>
#include <cerrno>
#include <chrono>

namespace Obd {

namespace {

struct Speed
{
    unsigned int baud;
    speed_t code;
};

const Speed SPEEDS[] = {
    { 9600, B9600 },     { 19200, B19200 },   { 38400, B38400 },   { 57600, B57600 },
    { 115200, B115200 }, { 230400, B230400 }, { 460800, B460800 }, { 500000, B500000 },
    { 921600, B921600 }, { 1000000, B1000000 }, { 2000000, B2000000 },
};

bool speedCode(unsigned int baud, speed_t& code)
{
    for (const Speed& speed : SPEEDS) {
        if (speed.baud == baud) {
            code = speed.code;
            return true;
        }
    }
    return false;
}

} // namespace

SerialBus::SerialBus()
    : requested_(DEFAULT_BAUD)
    , baud_(DEFAULT_BAUD)
{
}

bool SerialBus::supportsBaud(unsigned int baud)
{
    speed_t unused;
    return speedCode(baud, unused);
}

const std::vector<unsigned int>& SerialBus::detectionOrder()
{
    static const std::vector<unsigned int> order = { 38400, 9600, 115200, 230400, 500000 };
    return order;
}

bool SerialBus::init(const std::string& device, unsigned int baud)
{
    assert(!isOpen() && "!isOpen()");
    if (baud != AUTO_BAUD && !supportsBaud(baud))
        return false;
    device_ = device;
    requested_ = baud;
    baud_ = baud == AUTO_BAUD ? DEFAULT_BAUD : baud;
    return true;
}

bool SerialBus::setSpeed(unsigned int baud)
{
    speed_t code;
    struct termios settings;
    if (!speedCode(baud, code)) {
        lastError_ = EINVAL;
        return false;
    }
    if (::tcgetattr(fd_, &settings) != 0) {
        lastError_ = errno;
        return false;
    }
    ::cfmakeraw(&settings);
    // No modem lines, no flow control: most adapters wire neither.
    settings.c_cflag |= CLOCAL | CREAD;
    settings.c_cflag &= ~(CSTOPB | CRTSCTS);
    settings.c_cc[VMIN] = 1;
    settings.c_cc[VTIME] = 0;
    ::cfsetispeed(&settings, code);
    ::cfsetospeed(&settings, code);
    if (::tcsetattr(fd_, TCSANOW, &settings) != 0) {
        lastError_ = errno;
        return false;
    }
    // What came at the old rate is noise at the new one.
    ::tcflush(fd_, TCIOFLUSH);
    baud_ = baud;
    return true;
}

bool SerialBus::prompts()
{
    // A bare CR: the adapter repeats nothing and prompts.
    const std::vector<unsigned char> probe = { '\r' };
    if (write(probe) != WS_OK)
        return false;
    typedef std::chrono::steady_clock Clock;
    const Clock::time_point deadline = Clock::now() + std::chrono::milliseconds(PROBE_TIMEOUT_MS);
    std::vector<unsigned char> reply;
    while (Clock::now() < deadline && lastError_ != ECANCELED) {
        const int left = static_cast<int>(std::chrono::duration_cast<std::chrono::milliseconds>(
                                              deadline - Clock::now()).count());
        if (wait(POLLIN, std::max(left, 1)) <= 0)
            continue;
        unsigned char chunk[64];
        const ssize_t count = receive(chunk, sizeof(chunk));
        if (count <= 0)
            continue;
        if (std::find(chunk, chunk + count, '>') != chunk + count)
            return true;
    }
    return false;
}

IMessageBus::OpenStatus SerialBus::open()
{
    assert(!isOpen() && "!isOpen()");
    if (device_.empty())
        return fail(ENOENT);
    // O_NOCTTY: an adapter must never become our controlling terminal.
    const int fd = ::open(device_.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0)
        return fail(errno);
    adopt(fd, false);
    if (requested_ != AUTO_BAUD)
        return setSpeed(requested_) ? OS_OK : fail(lastError_);
    lastError_ = 0;
    for (unsigned int baud : detectionOrder()) {
        if (!setSpeed(baud))
            return fail(lastError_);
        if (prompts()) {
            // The probe's prompt must not be taken for the first command's reply.
            ::tcflush(fd_, TCIFLUSH);
            OBD_INFO << "Adapter on " << device_ << " answers at " << baud << " baud";
            return OS_OK;
        }
        if (lastError_ == ECANCELED)
            return fail(ECANCELED);
    }
    // No prompt at any rate: nothing that talks like an adapter is there.
    OBD_ERROR << "No adapter prompt on " << device_ << " at any baud rate";
    return fail(ETIMEDOUT);
}

} // namespace Obd
