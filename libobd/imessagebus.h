#ifndef OBD_IMESSAGEBUS_H
#define OBD_IMESSAGEBUS_H

#include <string>
#include <vector>

namespace Obd {

// A raw byte pipe to the adapter. Knows nothing of lines or prompts.
class IMessageBus
{
public:
    enum OpenStatus {
        OS_OK = 0,
        OS_ERROR = 1,
        OS_HOST_DOWN = 2,
        OS_CONNECTION_REFUSED = 3,
        OS_SOCKET_FAILED = 4
    };
    enum ReadStatus {
        RS_OK = 0,
        RS_ERROR = 1,
        RS_DISCONNECTED = 2,
        RS_TIMEOUT = 3
    };
    enum WriteStatus {
        WS_OK = 0,
        WS_ERROR = 1,
        WS_TIMEOUT = 2
    };

    virtual ~IMessageBus() {}
    virtual OpenStatus open() = 0;
    virtual bool close() = 0;
    // Appends what arrived to buffer; never clears it.
    virtual ReadStatus read(std::vector<unsigned char>& buffer) = 0;
    virtual WriteStatus write(const std::vector<unsigned char>& data) = 0;
    virtual std::string errorString() const = 0;
};

} // namespace Obd

#endif
