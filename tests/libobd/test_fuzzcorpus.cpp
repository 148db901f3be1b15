// Every committed fuzzing input (tests/fuzz/corpus/<target>/) through the
// same entry function its libFuzzer target uses: the inputs that once
// crashed or reached a rare path stay covered in the normal suite.

#include "fuzzentries.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>

namespace {

class FuzzCorpus : public ::testing::TestWithParam<std::string>
{
};

TEST_P(FuzzCorpus, EveryInputKeepsTheInvariants)
{
    FuzzEntries::Entry entry = FuzzEntries::byName(GetParam());
    ASSERT_TRUE(entry);
    QDir dir(QString(ZARVANE_SOURCE_DIR "/tests/fuzz/corpus/") + QString::fromStdString(GetParam()));
    const QStringList files = dir.entryList(QDir::Files, QDir::Name);
    ASSERT_FALSE(files.isEmpty()) << "no corpus in " << dir.path().toStdString();
    for (const QString& name : files) {
        SCOPED_TRACE(name.toStdString());
        QFile file(dir.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        const QByteArray bytes = file.readAll();
        EXPECT_TRUE(entry(reinterpret_cast<const uint8_t*>(bytes.constData()),
                          static_cast<size_t>(bytes.size())));
    }
}

INSTANTIATE_TEST_SUITE_P(EveryTarget, FuzzCorpus, ::testing::ValuesIn(FuzzEntries::names()),
                         [](const ::testing::TestParamInfo<std::string>& info) { return info.param; });

} // namespace
