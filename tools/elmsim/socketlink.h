#ifndef ELMSIM_SOCKETLINK_H
#define ELMSIM_SOCKETLINK_H

#include "adapterlink.h"

#include <atomic>

namespace ElmSim {

// AdapterLink over a connected TCP socket or a terminal. Pauses end early when the
// server's wake pipe becomes readable (stop or drop requested).
class SocketLink : public AdapterLink
{
public:
    SocketLink(int socketFd, int wakeFd);

    void send(const std::string& text) override;
    bool pause(unsigned int ms) override;
    bool failed() const { return m_failed; }

private:
    int m_socketFd;
    int m_wakeFd;
    bool m_failed;
};

} // namespace ElmSim

#endif
