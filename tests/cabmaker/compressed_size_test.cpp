// Exact folder sizes of fixed inputs: a change in what an encoder produces, better or worse, shows.
#include "cabmaker/folder_encoder.h"

#include "sample_data.h"

#include <QMap>
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>

using namespace qb::cabmaker;

namespace {

struct SizeRow
{
    const char *input;
    CompressionKind kind;
    int window; // LZX only
    int level; // LZX only
    qint64 bytes;
};

constexpr auto None = CompressionKind::None;
constexpr auto MsZip = CompressionKind::MsZip;
constexpr auto Lzx = CompressionKind::Lzx;

// To regenerate: QB_PRINT_SIZES=1 qb_cabmaker_tests --gtest_filter=CompressedSizes.* prints these rows.
const SizeRow kSizes[] = {
    {"text", None, 0, 0, 524288},
    {"text", MsZip, 0, 0, 76622},
    {"text", Lzx, 15, 1, 98726},
    {"text", Lzx, 15, 4, 92826},
    {"text", Lzx, 15, 7, 75818},
    {"text", Lzx, 15, 9, 71342},
    {"text", Lzx, 17, 1, 98766},
    {"text", Lzx, 17, 4, 93006},
    {"text", Lzx, 17, 7, 75666},
    {"text", Lzx, 17, 9, 68552},
    {"text", Lzx, 21, 1, 98774},
    {"text", Lzx, 21, 4, 93046},
    {"text", Lzx, 21, 7, 75680},
    {"text", Lzx, 21, 9, 67678},
    {"x86", None, 0, 0, 524288},
    {"x86", MsZip, 0, 0, 275782},
    {"x86", Lzx, 15, 1, 256212},
    {"x86", Lzx, 15, 4, 248670},
    {"x86", Lzx, 15, 7, 236108},
    {"x86", Lzx, 15, 9, 232890},
    {"x86", Lzx, 17, 1, 257334},
    {"x86", Lzx, 17, 4, 248208},
    {"x86", Lzx, 17, 7, 233760},
    {"x86", Lzx, 17, 9, 227688},
    {"x86", Lzx, 21, 1, 258158},
    {"x86", Lzx, 21, 4, 248970},
    {"x86", Lzx, 21, 7, 233558},
    {"x86", Lzx, 21, 9, 226708},
    {"random", None, 0, 0, 262144},
    {"random", MsZip, 0, 0, 262200},
    {"random", Lzx, 15, 1, 262276},
    {"random", Lzx, 21, 9, 262276},
};

QByteArray input(const char *name)
{
    static QMap<QByteArray, QByteArray> cache;
    const QByteArray key(name);
    if (!cache.contains(key)) {
        QRandomGenerator random(2024);
        if (key == "text")
            cache[key] = qb::test::WordSoup(512 * 1024, 11);
        else if (key == "x86")
            cache[key] = qb::test::FakeX86(512 * 1024, random);
        else
            cache[key] = qb::test::RandomBytes(256 * 1024, 13);
    }
    return cache[key];
}

const char *kindName(CompressionKind kind)
{
    return kind == None ? "None" : kind == MsZip ? "MsZip" : "Lzx";
}

TEST(CompressedSizes, MatchTheTable)
{
    const bool print = qEnvironmentVariableIsSet("QB_PRINT_SIZES");
    for (const SizeRow &row : kSizes) {
        FolderSettings settings;
        settings.kind = row.kind;
        if (row.kind == Lzx) {
            settings.lzxWindowBits = row.window;
            settings.lzxLevel = row.level;
        }
        QString error;
        const auto encoder = MakeFolderEncoder(settings, error);
        ASSERT_TRUE(encoder) << error.toStdString();
        const QByteArray data = input(row.input);
        std::vector<EncodedBlock> blocks;
        encoder->encode(
            reinterpret_cast<const unsigned char *>(data.constData()), size_t(data.size()), true, blocks);
        qint64 bytes = 0;
        for (const EncodedBlock &block : blocks)
            bytes += block.payload.size();

        if (print) {
            std::printf("    {\"%s\", %s, %d, %d, %lld},\n", row.input, kindName(row.kind), row.window,
                row.level, static_cast<long long>(bytes));
            continue;
        }
        const std::string where = std::string(row.input) + " " + kindName(row.kind) + " window "
            + std::to_string(row.window) + " level " + std::to_string(row.level) + ": "
            + std::to_string(bytes) + " bytes, table says " + std::to_string(row.bytes);
        // Half a percent either way; a smaller result fails too, so that the table stays current.
        EXPECT_LE(bytes * 1000, row.bytes * 1005) << where << ": the output grew";
        EXPECT_GE(bytes * 1000, row.bytes * 995)
            << where << ": the encoder improved; update the table on purpose (QB_PRINT_SIZES=1)";
    }
}

} // namespace
