#include "bluetoothbus.h"

#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <cassert>
#include <cerrno>
#include <cstring>

namespace Obd {

namespace {

const size_t CHUNK_SIZE = 256;
const long RECEIVE_TIMEOUT_US = 500000;

} // namespace

BluetoothBus::BluetoothBus()
    : socket_(-1)
    , lastError_(0)
{
    std::memset(&address_, 0, sizeof(address_));
}

BluetoothBus::~BluetoothBus()
{
    close();
}

bool BluetoothBus::init(const std::string& address, unsigned int channel)
{
    assert(socket_ == -1 && "socket_ == -1");

    // str2ba leaves a malformed text as some address; the connect then fails.
    str2ba(address.c_str(), &address_.rc_bdaddr);
    // Only the low byte survives: the serial-port class 0x1101 becomes channel 1,
    // which is where the adapters listen.
    address_.rc_channel = static_cast<uint8_t>(channel & 0xFF);
    address_.rc_family = AF_BLUETOOTH;
    return true;
}

IMessageBus::OpenStatus BluetoothBus::open()
{
    assert(socket_ == -1 && "socket_ == -1");

    socket_ = ::socket(AF_BLUETOOTH, SOCK_STREAM, BTPROTO_RFCOMM);
    if (socket_ < 0) {
        lastError_ = errno;
        socket_ = -1;
        return OS_SOCKET_FAILED;
    }
    if (::connect(socket_, reinterpret_cast<const struct sockaddr*>(&address_), sizeof(address_))
        != 0) {
        lastError_ = errno;
        close();
        if (lastError_ == EHOSTDOWN)
            return OS_HOST_DOWN;
        if (lastError_ == ECONNREFUSED)
            return OS_CONNECTION_REFUSED;
        return OS_ERROR;
    }
    struct timeval timeout;
    timeout.tv_sec = 0;
    timeout.tv_usec = RECEIVE_TIMEOUT_US;
    if (::setsockopt(socket_, SOL_SOCKET, SO_RCVTIMEO, &timeout, sizeof(timeout)) != 0) {
        lastError_ = errno;
        close();
        return OS_ERROR;
    }
    return OS_OK;
}

bool BluetoothBus::close()
{
    if (socket_ == -1)
        return true;
    int result = ::close(socket_);
    socket_ = -1;
    return result == 0;
}

IMessageBus::ReadStatus BluetoothBus::read(std::vector<unsigned char>& buffer)
{
    assert(socket_ != -1 && "socket_ != -1");

    unsigned char chunk[CHUNK_SIZE];
    std::memset(chunk, 0, sizeof(chunk));
    ssize_t received = ::read(socket_, chunk, sizeof(chunk));
    if (received < 0) {
        if (errno == EAGAIN || errno == EWOULDBLOCK)
            return RS_TIMEOUT;
        lastError_ = errno;
        return RS_ERROR;
    }
    if (received == 0)
        return RS_DISCONNECTED;
    buffer.insert(buffer.end(), chunk, chunk + received);
    return RS_OK;
}

IMessageBus::WriteStatus BluetoothBus::write(const std::vector<unsigned char>& data)
{
    assert(socket_ != -1 && "socket_ != -1");

    size_t written = 0;
    while (written < data.size()) {
        ssize_t result = ::write(socket_, data.data() + written, data.size() - written);
        if (result < 0) {
            lastError_ = errno;
            return WS_ERROR;
        }
        written += static_cast<size_t>(result);
    }
    return WS_OK;
}

std::string BluetoothBus::errorString() const
{
    return std::strerror(lastError_);
}

} // namespace Obd
