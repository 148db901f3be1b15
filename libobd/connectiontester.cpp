#include "connectiontester.h"
#include "elmtransport.h"

#include <string>
#include <vector>

namespace Obd {

namespace {

const unsigned int FIRST_READ_MS = 200;
const unsigned int SECOND_READ_MS = 50;

} // namespace

ConnectionTester::ConnectionTester(IConnection* connection)
    : m_connection(connection)
{
}

ConnectionTester::~ConnectionTester()
{
}

bool ConnectionTester::askIdentity()
{
    static const std::vector<unsigned char> ATI = { 'A', 'T', 'I' };
    if (ElmTransport::send(m_connection, ATI) != 0)
        return false;
    std::vector<unsigned char> reply;
    ElmTransport::receive(m_connection, reply, FIRST_READ_MS);
    std::vector<unsigned char> more;
    ElmTransport::receive(m_connection, more, SECOND_READ_MS);
    reply.insert(reply.end(), more.begin(), more.end());
    return std::string(reply.begin(), reply.end()).find("ELM") != std::string::npos;
}

bool ConnectionTester::test()
{
    if (!m_connection)
        return false;
    std::vector<unsigned char> pending;
    ElmTransport::receive(m_connection, pending, 0);
    return askIdentity() || askIdentity();
}

} // namespace Obd
