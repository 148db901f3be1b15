#include "printer.h"

#include <QJsonDocument>

namespace Cli {

Printer::Printer(std::ostream& out, bool json)
    : m_out(out)
    , m_json(json)
{
}

void Printer::line(const std::string& text)
{
    if (!m_json)
        m_out << escaped(text) << "\n" << std::flush;
}

std::string Printer::escaped(const std::string& text)
{
    static const char DIGITS[] = "0123456789abcdef";
    std::string out;
    out.reserve(text.size());
    for (unsigned char c : text) {
        if (c < 0x20 || c == 0x7F) {
            out += "\\x";
            out += DIGITS[c >> 4];
            out += DIGITS[c & 0x0F];
        } else {
            out += static_cast<char>(c);
        }
    }
    return out;
}

void Printer::record(const QJsonObject& object)
{
    m_out << QJsonDocument(object).toJson(QJsonDocument::Compact).toStdString() << "\n"
          << std::flush;
}

void Printer::finish()
{
    if (m_json && !m_root.isEmpty())
        m_out << QJsonDocument(m_root).toJson(QJsonDocument::Indented).toStdString() << std::flush;
}

} // namespace Cli
