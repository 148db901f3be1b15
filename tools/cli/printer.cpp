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
        m_out << text << "\n" << std::flush;
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
