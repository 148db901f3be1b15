#ifndef OBD_CONNECTIONTESTER_H
#define OBD_CONNECTIONTESTER_H

namespace Obd {

class IConnection;

// Checks that an ELM adapter answers at all, straight on the transport.
class ConnectionTester
{
public:
    explicit ConnectionTester(IConnection* connection);
    virtual ~ConnectionTester();

    bool test();

private:
    bool askIdentity();

    IConnection* m_connection;
};

} // namespace Obd

#endif
