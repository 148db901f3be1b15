#ifndef CLI_PRINTER_H
#define CLI_PRINTER_H

#include <QJsonObject>

#include <ostream>
#include <string>

namespace Cli {

// Text for people or one JSON document for scripts.
class Printer
{
public:
    Printer(std::ostream& out, bool json);

    bool isJson() const { return m_json; }
    // Text mode only. Control characters (from the adapter or the car) are
    // printed as \xNN, so a VIN cannot move the cursor or end a line.
    void line(const std::string& text = std::string());
    static std::string escaped(const std::string& text);
    // JSON mode: the document printed by finish().
    QJsonObject& root() { return m_root; }
    // JSON mode: one compact object on a line of its own, now.
    void record(const QJsonObject& object);
    void finish();

private:
    std::ostream& m_out;
    bool m_json;
    QJsonObject m_root;
};

} // namespace Cli

#endif
