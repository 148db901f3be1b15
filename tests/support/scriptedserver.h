#ifndef TEST_SCRIPTEDSERVER_H
#define TEST_SCRIPTEDSERVER_H

#include <condition_variable>
#include <deque>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

// A TCP peer for tests that plays an adapter from a script.
//
// Listens on 127.0.0.1 (port chosen by the system) and serves one client at
// a time on its own thread; a new client is accepted after the previous one
// went away. Input is split into command lines at '\r' (line feeds are
// ignored); each line is recorded and answered by the first of:
//   1. the oldest once() reply queued for exactly that line,
//   2. the on() reply for that line,
//   3. the onAnything() reply (at start "?\r\r>", like an adapter).
// A reply is a list of steps run in order on the server thread: send bytes
// (one send() call, so one chunk on loopback for small texts), pause, hang
// up. A reply with no steps stays silent. While a reply pauses the server
// reads nothing, as a real adapter would.
//
//   ScriptedServer server;
//   server.on("ATI", ScriptedServer::answer("ELM327 v1.5"));          // "ELM327 v1.5\r\r>"
//   server.once("0100", ScriptedServer::Reply().send("41 00 ").pause(200).send("BE 3F A8 13 \r\r>"));
//   server.on("03", ScriptedServer::silence());
//   server.on("ATZ", ScriptedServer::hangUp());
//   server.push("STOPPED\r\r>");                                     // unprompted
class ScriptedServer
{
public:
    class Reply
    {
    public:
        Reply& send(const std::string& bytes);
        Reply& pause(int ms);
        Reply& close();

    private:
        friend class ScriptedServer;
        struct Step
        {
            enum Kind { Send, Pause, Close };
            Kind kind;
            std::string bytes;
            int ms;
        };
        std::vector<Step> m_steps;
    };

    // The bytes as they are, in one chunk.
    static Reply reply(const std::string& bytes);
    // An adapter's answer: text + "\r\r>".
    static Reply answer(const std::string& text);
    // The parts in separate chunks, pauseMs between them.
    static Reply chunks(const std::vector<std::string>& parts, int pauseMs);
    static Reply silence();
    static Reply hangUp();

    ScriptedServer();
    ~ScriptedServer();

    bool isListening() const { return m_listenFd != -1; }
    unsigned short port() const { return m_port; }

    void on(const std::string& command, const Reply& reply);
    void once(const std::string& command, const Reply& reply);
    void onAnything(const Reply& reply);

    // Bytes to the client now, without a command (after any reply in progress).
    void push(const std::string& bytes);
    // Hang up on the current client.
    void disconnect();

    // Command lines received so far, without their '\r'.
    std::vector<std::string> commands() const;
    size_t commandCount() const;
    void clearCommands();
    bool waitForCommands(size_t count, int timeoutMs) const;
    // Replies finished (silent ones included), counted since start.
    size_t repliesDone() const;
    bool waitForReplies(size_t count, int timeoutMs) const;
    // Clients accepted since start.
    size_t connectionCount() const;
    bool waitForConnections(size_t count, int timeoutMs) const;

private:
    ScriptedServer(const ScriptedServer&) = delete;
    ScriptedServer& operator=(const ScriptedServer&) = delete;

    struct Action
    {
        bool disconnect;
        std::string bytes;
    };

    void run();
    void handleLine(const std::string& line);
    void play(const Reply& reply);
    bool sendAll(const std::string& bytes);
    void dropClient();
    void wake();
    template <typename Predicate>
    bool waitUntil(int timeoutMs, Predicate predicate) const;

    int m_listenFd = -1;
    int m_wakeFd = -1;
    int m_clientFd = -1; // server thread only
    unsigned short m_port = 0;
    std::string m_lineBuffer; // server thread only

    mutable std::mutex m_mutex;
    mutable std::condition_variable m_changed;
    std::map<std::string, std::deque<Reply>> m_once;
    std::map<std::string, Reply> m_rules;
    Reply m_default;
    std::deque<Action> m_actions;
    std::vector<std::string> m_commands;
    size_t m_repliesDone = 0;
    size_t m_connections = 0;
    bool m_stopping = false;

    std::thread m_thread;
};

#endif
