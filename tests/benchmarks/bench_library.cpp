// Google Benchmark figures of the library's offline parts: building the
// trouble-code database, looking codes up, and filtering the 4277-row code
// list the way the database screens do (QSortFilterProxyModel, dynamic
// sort/filter off, case-insensitive, filter role Qt::UserRole + 1).

#include "dtcreader.h"

#include <benchmark/benchmark.h>

#include <QRegularExpression>
#include <QSortFilterProxyModel>
#include <QAbstractListModel>

#include <memory>
#include <string>
#include <vector>

namespace {

const int CODE_ROLE = Qt::UserRole + 1;

void DtcDatabaseConstruction(benchmark::State& state)
{
    for (auto _ : state) {
        Obd::DtcReader reader;
        benchmark::DoNotOptimize(reader.size());
    }
}
BENCHMARK(DtcDatabaseConstruction)->Unit(benchmark::kMillisecond);

void DtcLookup(benchmark::State& state)
{
    const Obd::DtcReader& reader = Obd::DtcReader::instance();
    const std::vector<std::string> codes = reader.getAllCodes();
    size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(reader.getDescription(codes[i]));
        i = (i + 7919) % codes.size();
    }
}
BENCHMARK(DtcLookup);

void DtcLookupUnknown(benchmark::State& state)
{
    const Obd::DtcReader& reader = Obd::DtcReader::instance();
    for (auto _ : state)
        benchmark::DoNotOptimize(reader.getDescription("P3FFF"));
}
BENCHMARK(DtcLookupUnknown);

// The code list as the screens' list model holds it: one row per database
// code, the code text under the filter role.
class CodeListModel : public QAbstractListModel
{
public:
    CodeListModel()
    {
        const Obd::DtcReader& reader = Obd::DtcReader::instance();
        for (const std::string& code : reader.getAllCodes()) {
            m_codes.append(QString::fromStdString(code));
            m_descriptions.append(QString::fromStdString(reader.getDescription(code)));
        }
    }
    int rowCount(const QModelIndex& parent = QModelIndex()) const override
    {
        return parent.isValid() ? 0 : m_codes.size();
    }
    QVariant data(const QModelIndex& index, int role) const override
    {
        if (!index.isValid() || index.row() >= m_codes.size())
            return QVariant();
        if (role == CODE_ROLE)
            return m_codes[index.row()];
        if (role == CODE_ROLE + 1)
            return m_descriptions[index.row()];
        return QVariant();
    }

private:
    QStringList m_codes;
    QStringList m_descriptions;
};

std::unique_ptr<QSortFilterProxyModel> screenFilter(CodeListModel* source)
{
    std::unique_ptr<QSortFilterProxyModel> filter(new QSortFilterProxyModel);
    filter->setDynamicSortFilter(false);
    filter->setFilterCaseSensitivity(Qt::CaseInsensitive);
    filter->setFilterKeyColumn(-1);
    filter->setFilterRole(CODE_ROLE);
    filter->setSourceModel(source);
    return filter;
}

// Typing into the search field: each keystroke sets a new fixed string.
void FilterFixedString(benchmark::State& state)
{
    std::unique_ptr<CodeListModel> model(new CodeListModel);
    std::unique_ptr<QSortFilterProxyModel> filter = screenFilter(model.get());
    const QString keystrokes[] = { "p", "p0", "p01", "p017", "p0171" };
    size_t i = 0;
    for (auto _ : state) {
        filter->setFilterFixedString(keystrokes[i++ % 5]);
        benchmark::DoNotOptimize(filter->rowCount());
    }
    state.counters["rows"] = model->rowCount();
}
BENCHMARK(FilterFixedString)->Unit(benchmark::kMicrosecond);

// The browse screen's category toggles: "[letters]{1,1}[0-9]{3,3}.*".
void FilterBrowseRegularExpression(benchmark::State& state)
{
    std::unique_ptr<CodeListModel> model(new CodeListModel);
    std::unique_ptr<QSortFilterProxyModel> filter = screenFilter(model.get());
    const QString letters[] = { "BCPU", "P", "BC", "U" };
    size_t i = 0;
    for (auto _ : state) {
        filter->setFilterRegularExpression(
            QRegularExpression(QString::fromLatin1("[%1]{1,1}[0-9]{3,3}.*").arg(letters[i++ % 4]),
                               QRegularExpression::CaseInsensitiveOption));
        benchmark::DoNotOptimize(filter->rowCount());
    }
    state.counters["rows"] = model->rowCount();
}
BENCHMARK(FilterBrowseRegularExpression)->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
