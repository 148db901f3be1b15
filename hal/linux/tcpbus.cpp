#include "tcpbus.h"

#include <arpa/inet.h>
#include <netdb.h>

#include <cassert>
#include <cstring>

namespace Obd {

TcpBus::TcpBus()
{
    std::memset(&address_, 0, sizeof(address_));
}

bool TcpBus::init(const std::string& host, unsigned int port)
{
    assert(!isOpen() && "!isOpen()");

    // The reentrant form: the opening thread may resolve while others log or resolve.
    struct hostent entry;
    struct hostent* result = nullptr;
    char scratch[2048];
    int resolveError = 0;
    if (gethostbyname_r(host.c_str(), &entry, scratch, sizeof(scratch), &result, &resolveError) != 0
        || !result || result->h_addrtype != AF_INET || !result->h_addr_list
        || !result->h_addr_list[0] || result->h_length <= 0
        || static_cast<size_t>(result->h_length) > sizeof(address_.sin_addr))
        return false;

    std::memcpy(&address_.sin_addr, result->h_addr_list[0], result->h_length);
    address_.sin_family = AF_INET;
    address_.sin_port = htons(static_cast<uint16_t>(port & 0xFFFF));
    return true;
}

IMessageBus::OpenStatus TcpBus::open()
{
    assert(!isOpen() && "!isOpen()");
    return connectSocket(AF_INET, 0, reinterpret_cast<const struct sockaddr*>(&address_),
                         sizeof(address_), CONNECT_TIMEOUT_MS);
}

} // namespace Obd
