// LZX folders checked by outside decoders (cabextract, 7-Zip, libmspack) for every window and level.
#include "cabmaker/lzx_encoder.h"
#include "sample_data.h"
#include "support/mspack_memory.h"
#include "support/temp_tree.h"
#include "util/cab_format.h"

#include <QFile>
#include <QMap>
#include <QRandomGenerator>
#include <gtest/gtest.h>

#include <mspack.h>

#include <algorithm>
#include <functional>
#include <vector>

using namespace qb::cabmaker;
using qb::test::CabEntry;
using qb::test::TempTree;

namespace {

// ---------------------------------------------------------------------------------------------
// Data

enum class Kind {
    Text,
    Random,
    Zeros,
    OneByte,
    Period3,
    Period1000,
    LongMatches,
    X86,
    E8Run,
    Records, // 16-byte table rows: matches at distances that are multiples of 16
    Dna, // four letters: many middling matches
    Alpha32, // 32 letters at random: matches too short to need lengths past 8
    Mixed, // stretches that call for different kinds of block, one after another
    WindowEdge, // size is the window: copies from just inside and just outside its reach
};

// Every kind whose size is simply its length.
constexpr Kind kAllKinds[]
    = {Kind::Text, Kind::Random, Kind::Zeros, Kind::OneByte, Kind::Period3, Kind::Period1000,
        Kind::LongMatches, Kind::X86, Kind::E8Run, Kind::Records, Kind::Dna, Kind::Alpha32, Kind::Mixed};

// By the enum's order.
const char *const kKindNames[] = {"text", "random", "zeros", "onebyte", "period3", "period1000", "longmatch",
    "x86", "e8run", "records", "dna", "alpha32", "mixed", "windowedge"};

const char *kindName(Kind kind)
{
    return kKindNames[size_t(kind)];
}

void appendLe32(QByteArray &bytes, quint32 value)
{
    for (int i = 0; i < 4; ++i)
        bytes += char(value >> (8 * i));
}

QByteArray randomBytes(qsizetype size, QRandomGenerator &random)
{
    QByteArray bytes(size, '\0');
    for (char &c : bytes)
        c = char(random.bounded(256));
    return bytes;
}

QByteArray makeText(qsizetype size, QRandomGenerator &random)
{
    static const char *const words[] = {"cabinet", "folder", "window", "the", "of", "and", "frame",
        "Quillbox", "压缩", "文件", "setup.inf", "{\"key\": [1, 2]}"};
    QByteArray bytes;
    bytes.reserve(size + 64);
    while (bytes.size() < size) {
        bytes += words[random.bounded(int(std::size(words)))];
        const int r = random.bounded(16);
        if (r == 0)
            bytes += "\r\n";
        else if (r == 1)
            bytes += ' ' + QByteArray::number(random.bounded(100000)) + ' ';
        else
            bytes += ' ';
    }
    bytes.truncate(size);
    return bytes;
}

QByteArray makePeriodic(qsizetype size, const QByteArray &period)
{
    QByteArray bytes;
    bytes.reserve(size + period.size());
    while (bytes.size() < size)
        bytes += period;
    bytes.truncate(size);
    return bytes;
}

// Random stretches and copies of earlier stretches: lengths around and far beyond the longest
// match, distances from overlapping runs to well outside the smaller windows.
QByteArray makeLongMatches(qsizetype size, QRandomGenerator &random)
{
    static const int lengths[] = {2, 3, 255, 256, 257, 258, 259, 514, 1000, 5000, 40000};
    QByteArray bytes;
    bytes.reserve(size + 50000);
    while (bytes.size() < size) {
        if (bytes.size() < 1024 || random.bounded(4) == 0) {
            bytes += randomBytes(16 + random.bounded(700), random);
            continue;
        }
        const int length = random.bounded(2) ? lengths[random.bounded(int(std::size(lengths)))]
                                             : 257 + random.bounded(4000);
        const int history = int(bytes.size());
        int distance = 0;
        switch (random.bounded(4)) {
        case 0:
            distance = 1 + random.bounded(8);
            break;
        case 1:
            distance = 1 + random.bounded(std::min(history, 65536));
            break;
        default:
            distance = 1 + random.bounded(history);
        }
        const qsizetype from = bytes.size() - distance;
        for (int i = 0; i < length; ++i)
            bytes += bytes.at(from + i);
    }
    bytes.truncate(size);
    return bytes;
}

QByteArray makeRecords(qsizetype size, QRandomGenerator &random)
{
    static const quint32 values[] = {0, 1, 100, 0xFFFFFFFF, 0x7F000001, 4096, 65535, 12345678};
    QByteArray bytes;
    bytes.reserve(size + 16);
    for (quint32 id = 1000; bytes.size() < size; id += 1 + random.bounded(3)) {
        appendLe32(bytes, id);
        appendLe32(bytes, quint32(random.bounded(6)) << 8 | quint32(random.bounded(3)));
        appendLe32(bytes, values[random.bounded(int(std::size(values)))]);
        appendLe32(bytes, random.bounded(20) == 0 ? random.generate() : 0);
    }
    bytes.truncate(size);
    return bytes;
}

QByteArray makeAlphabet(qsizetype size, const char *letters, int count, QRandomGenerator &random)
{
    QByteArray bytes(size, '\0');
    for (char &c : bytes)
        c = letters[random.bounded(count)];
    return bytes;
}

// Incompressible stretches, text, short runs and copies of earlier text, of odd lengths, in turn.
QByteArray makeMixed(qsizetype size, QRandomGenerator &random)
{
    QByteArray bytes;
    bytes.reserve(size + 70000);
    QByteArray lastText;
    while (bytes.size() < size) {
        switch (random.bounded(4)) {
        case 0:
            bytes += randomBytes(3001 + random.bounded(67000), random);
            break;
        case 1:
            lastText = makeText(1001 + random.bounded(49000), random);
            bytes += lastText;
            break;
        case 2:
            bytes += QByteArray(101 + random.bounded(5000), char(random.bounded(256)));
            break;
        default:
            bytes += lastText.isEmpty() ? randomBytes(777, random) : lastText;
        }
    }
    bytes.truncate(size);
    return bytes;
}

// A window's worth of random bytes and a bit more, then copies from distances around the window's
// size: the ones inside may be matched, the ones outside must come out as literals.
QByteArray makeWindowEdge(qsizetype window, QRandomGenerator &random)
{
    QByteArray bytes = randomBytes(window + 4097, random);
    for (const qsizetype distance : {window - 4, window - 3, window - 2, window - 1, window, window + 1}) {
        const qsizetype from = bytes.size() - distance;
        bytes += bytes.mid(from, 300);
        bytes += randomBytes(50, random);
    }
    return bytes;
}

QByteArray makeData(Kind kind, qsizetype size, quint32 salt = 0)
{
    QRandomGenerator random(quint32(int(kind) * 1000003) ^ quint32(size) ^ (salt * 7919u));
    switch (kind) {
    case Kind::Text:
        return makeText(size, random);
    case Kind::Random:
        return randomBytes(size, random);
    case Kind::Zeros:
        return QByteArray(size, '\0');
    case Kind::OneByte:
        return QByteArray(size, 'q');
    case Kind::Period3:
        return makePeriodic(size, QByteArrayLiteral("abc"));
    case Kind::Period1000:
        return makePeriodic(size, randomBytes(1000, random));
    case Kind::LongMatches:
        return makeLongMatches(size, random);
    case Kind::X86:
        return qb::test::FakeX86(size, random);
    case Kind::E8Run:
        return QByteArray(size, '\xE8');
    case Kind::Records:
        return makeRecords(size, random);
    case Kind::Dna:
        return makeAlphabet(size, "ACGT", 4, random);
    case Kind::Alpha32:
        return makeAlphabet(size, "abcdefghijklmnopqrstuvwxyz012345", 32, random);
    case Kind::Mixed:
        return makeMixed(size, random);
    case Kind::WindowEdge:
        return makeWindowEdge(size, random);
    }
    return {};
}

struct Case
{
    Kind kind;
    qsizetype size;
};

QString caseName(const Case &c)
{
    return QStringLiteral("%1-%2.bin").arg(QString::fromLatin1(kindName(c.kind))).arg(c.size);
}

// ---------------------------------------------------------------------------------------------
// Outside tools

using qb::test::CabFile;

// What a decoder gave back against what went in, in one line.
std::string compareBytes(const QByteArray &got, const QByteArray &expected)
{
    const qsizetype at = qb::test::FirstDifference(got, expected);
    if (at < 0)
        return {};
    return "got " + std::to_string(got.size()) + " bytes for " + std::to_string(expected.size())
        + ", first difference at offset " + std::to_string(at);
}

// The compression type of each folder, read from the cabinet's tables.
QList<quint16> folderTypes(const QByteArray &cabinet)
{
    QList<quint16> types;
    if (cabinet.size() < qsizetype(qb::cab::kHeaderSize))
        return types;
    const auto *p = reinterpret_cast<const unsigned char *>(cabinet.constData());
    EXPECT_EQ(p[30] & qb::cab::kFlagReservePresent, 0) << "makecab wrote reserve areas";
    const int count = p[26] | (p[27] << 8);
    for (int i = 0; i < count; ++i) {
        const size_t at = qb::cab::kHeaderSize + size_t(i) * qb::cab::kFolderEntrySize + 6;
        if (at + 2 > size_t(cabinet.size()))
            break;
        types.append(quint16(p[at] | (p[at + 1] << 8)));
    }
    return types;
}

// makecab builds the files into LZX folders; level 0 leaves LZXLevel unset, and with folderEach
// every file gets a folder of its own. Returns the cabinet's path.
QString makeLzxCabinet(TempTree &tree, QList<CabFile> files, int window, int level, bool folderEach)
{
    QString settings = QStringLiteral(".Set CompressionType=LZX\r\n.Set CompressionMemory=%1").arg(window);
    if (level > 0)
        settings += QStringLiteral("\r\n.Set LZXLevel=%1").arg(level);
    for (qsizetype i = 1; folderEach && i < files.size(); ++i)
        files[i].before = QStringLiteral(".New Folder");
    return qb::test::BuildCabinet(tree, files, settings);
}

// cabextract and 7-Zip test and extract the cabinet, libmspack unpacks it in memory; every file
// has to come back byte for byte from each.
void verifyWithDecoders(TempTree &tree, const QString &cabinetPath, const QList<CabFile> &files)
{
    qb::test::ExpectExtractorsAgree(cabinetPath, tree.root(), qb::test::Extracted(files),
        {QStringLiteral("cabextract"), QStringLiteral("7zz")});

    const qb::test::UnpackResult unpacked = qb::test::UnpackWithMspack(qb::test::readAll(cabinetPath));
    EXPECT_EQ(unpacked.error, MSPACK_ERR_OK) << unpacked.describe().toStdString();
    EXPECT_TRUE(unpacked.messages.isEmpty()) << unpacked.describe().toStdString();
    QMap<QByteArray, QByteArray> got;
    for (const qb::test::UnpackedFile &file : unpacked.files)
        got.insert(file.name, file.bytes);
    for (const CabFile &file : files) {
        const auto it = got.constFind(file.name.toUtf8());
        if (it == got.cend()) {
            ADD_FAILURE() << "libmspack: " << file.name.toStdString() << " is not in the cabinet";
            continue;
        }
        const std::string problem = compareBytes(*it, file.bytes);
        EXPECT_TRUE(problem.empty()) << "libmspack: " << file.name.toStdString() << ": " << problem;
    }
}

// ---------------------------------------------------------------------------------------------
// makecab with every window and level, each data kind in a folder of its own

struct MakeCabRow
{
    std::string name;
    int window = 21;
    int level = 0; // 0: LZXLevel left unset
    std::vector<Case> cases;
};

void PrintTo(const MakeCabRow &row, std::ostream *os)
{
    *os << row.name;
}

// A few hundred KiB of the kinds that matter most, run under all 63 settings.
std::vector<Case> gridCases()
{
    return {{Kind::Text, 150000}, {Kind::X86, 140001}, {Kind::LongMatches, 200000}, {Kind::Random, 40000},
        {Kind::Period1000, 70000}, {Kind::Period3, 33001}, {Kind::Zeros, 65537}, {Kind::Mixed, 250000},
        {Kind::Records, 60000}, {Kind::Alpha32, 40000}};
}

std::vector<Case> sizeCases(int window, const std::vector<Kind> &windowSizeKinds)
{
    std::vector<Case> cases;
    for (const Kind kind : kAllKinds) {
        for (const qsizetype size : {0, 1, 32767, 32768, 32769})
            cases.push_back({kind, size});
    }
    for (const Kind kind : windowSizeKinds) {
        cases.push_back({kind, qsizetype(1) << window});
        cases.push_back({kind, (qsizetype(1) << window) + 1});
    }
    cases.push_back({Kind::WindowEdge, qsizetype(1) << window});
    return cases;
}

std::vector<MakeCabRow> makeCabRows()
{
    std::vector<MakeCabRow> rows;
    for (int window = 15; window <= 21; ++window) {
        for (int level = 1; level <= 9; ++level) {
            rows.push_back({"grid_w" + std::to_string(window) + "_l" + std::to_string(level), window, level,
                gridCases()});
        }
    }
    const std::vector<Kind> every(std::begin(kAllKinds), std::end(kAllKinds));
    rows.push_back({"sizes_w15_l1", 15, 1, sizeCases(15, every)});
    rows.push_back({"sizes_w15_l9", 15, 9, sizeCases(15, every)});
    rows.push_back({"sizes_w16_l9", 16, 9, sizeCases(16, every)});
    rows.push_back({"sizes_w21_l5", 21, 5, sizeCases(21, {Kind::Text, Kind::X86, Kind::LongMatches})});
    rows.push_back({"sizes_w21_l9", 21, 9, sizeCases(21, {Kind::X86})});
    rows.push_back({"sizes_w21_default", 21, 0, sizeCases(21, {Kind::Random})});
    // Past the file size that call translation assumes, where operands still get translated.
    rows.push_back({"x86_past_translation_size_w21_l3", 21, 3, {{Kind::X86, 12600001}}});
    // The windows between, filled exactly and by one byte more.
    const std::pair<int, int> wide[] = {{17, 3}, {18, 6}, {19, 8}, {20, 2}, {21, 1}};
    for (const auto &[window, level] : wide) {
        std::vector<Case> cases;
        for (const Kind kind : {Kind::X86, Kind::LongMatches}) {
            cases.push_back({kind, qsizetype(1) << window});
            cases.push_back({kind, (qsizetype(1) << window) + 1});
        }
        cases.push_back({Kind::WindowEdge, qsizetype(1) << window});
        rows.push_back(
            {"full_w" + std::to_string(window) + "_l" + std::to_string(level), window, level, cases});
    }
    return rows;
}

class LzxMakeCab : public ::testing::TestWithParam<MakeCabRow>
{
};

TEST_P(LzxMakeCab, EveryDecoderGetsEveryFolderBack)
{
    const MakeCabRow &row = GetParam();
    TempTree tree;
    QList<CabFile> entries;
    for (const Case &c : row.cases)
        entries.append({caseName(c), makeData(c.kind, c.size)});
    const QString cabinet = makeLzxCabinet(tree, entries, row.window, row.level, true);
    ASSERT_TRUE(QFile::exists(cabinet));

    // Without this a cabinet that fell back to another method would pass unnoticed.
    const QList<quint16> types = folderTypes(qb::test::readAll(cabinet));
    // An empty file has no folder of its own: it joins its neighbour's.
    const auto withData
        = std::count_if(entries.begin(), entries.end(), [](const CabFile &e) { return !e.bytes.isEmpty(); });
    EXPECT_EQ(types.size(), withData);
    for (const quint16 type : types)
        EXPECT_EQ(type, qb::cab::lzxCompressionType(row.window));

    verifyWithDecoders(tree, cabinet, entries);
}

INSTANTIATE_TEST_SUITE_P(
    Lzx, LzxMakeCab, ::testing::ValuesIn(makeCabRows()), [](const auto &info) { return info.param.name; });

// ---------------------------------------------------------------------------------------------
// Many files, some empty, sharing one folder: the window slides across file boundaries

struct ManyFilesRow
{
    std::string name;
    int window;
    int level;
};

void PrintTo(const ManyFilesRow &row, std::ostream *os)
{
    *os << row.name;
}

class LzxManyFiles : public ::testing::TestWithParam<ManyFilesRow>
{
};

TEST_P(LzxManyFiles, OneFolderOfThreeHundredFiles)
{
    const ManyFilesRow &row = GetParam();
    QList<CabFile> entries;
    qint64 total = 0;
    for (int i = 0; i < 300; ++i) {
        const Kind kind = kAllKinds[size_t(i) % std::size(kAllKinds)];
        // Mostly small, one in seven empty, every 25th large enough to carry the folder past
        // the writer's 2 MiB rounds in the middle of a file.
        qsizetype size = 1 + (i * 7919) % 6000;
        if (i % 7 == 3)
            size = 0;
        else if (i % 25 == 11)
            size = 150000 + i * 97;
        entries.append(
            {QStringLiteral("d%1\\%2-%3.bin").arg(i % 5).arg(QString::fromLatin1(kindName(kind))).arg(i),
                makeData(kind, size, quint32(i))});
        total += size;
    }
    ASSERT_GT(total, 2 * 1024 * 1024);

    TempTree tree;
    const QString cabinet = makeLzxCabinet(tree, entries, row.window, row.level, false);
    ASSERT_TRUE(QFile::exists(cabinet));
    const QList<quint16> types = folderTypes(qb::test::readAll(cabinet));
    EXPECT_EQ(types, QList<quint16> {qb::cab::lzxCompressionType(row.window)});
    verifyWithDecoders(tree, cabinet, entries);
}

INSTANTIATE_TEST_SUITE_P(Lzx, LzxManyFiles,
    ::testing::Values(
        ManyFilesRow {"w21_default", 21, 0}, ManyFilesRow {"w15_l7", 15, 7}, ManyFilesRow {"w18_l2", 18, 2}),
    [](const auto &info) { return info.param.name; });

// ---------------------------------------------------------------------------------------------
// In memory: compress, check the blocks' shape, assemble a cabinet, unpack with libmspack

constexpr qsizetype kMaxLzxPayload = qb::cab::kBlockSize + 6144; // the most a decoder reads per block

struct Packed
{
    std::vector<EncodedBlock> blocks;
    qint64 payloadBytes = 0;
};

// The block rules every folder's data must keep, whatever the compressor did inside.
void checkBlockShape(const std::vector<EncodedBlock> &blocks, qsizetype size)
{
    const size_t expectedCount = size_t((size + qb::cab::kBlockSize - 1) / qb::cab::kBlockSize);
    EXPECT_EQ(blocks.size(), expectedCount);
    qint64 covered = 0;
    for (size_t i = 0; i < blocks.size(); ++i) {
        const EncodedBlock &block = blocks[i];
        if (i + 1 < blocks.size()) {
            EXPECT_EQ(block.uncompressedSize, qb::cab::kBlockSize) << "block " << i;
        }
        EXPECT_GT(block.uncompressedSize, 0) << "block " << i;
        EXPECT_GT(block.payload.size(), 0) << "block " << i;
        EXPECT_LE(block.payload.size(), kMaxLzxPayload) << "block " << i;
        EXPECT_EQ(block.payload.size() % 2, 0) << "block " << i << " does not end on a 16-bit boundary";
        covered += block.uncompressedSize;
    }
    EXPECT_EQ(covered, size);
}

// libmspack must give the bytes back from a one-file cabinet of these blocks.
void expectMspackRoundTrip(const std::vector<EncodedBlock> &blocks, int window, const QByteArray &data)
{
    const QByteArray cabinet
        = qb::test::AssembleCabinet(qb::cab::lzxCompressionType(window), blocks, {{"data.bin", data}});
    const qb::test::UnpackResult unpacked = qb::test::UnpackWithMspack(cabinet);
    ASSERT_EQ(unpacked.error, MSPACK_ERR_OK) << unpacked.describe().toStdString();
    EXPECT_TRUE(unpacked.messages.isEmpty()) << unpacked.describe().toStdString();
    EXPECT_EQ(unpacked.folderType, qb::cab::lzxCompressionType(window));
    ASSERT_EQ(unpacked.files.size(), 1);
    const std::string problem = compareBytes(unpacked.files[0].bytes, data);
    EXPECT_TRUE(problem.empty()) << "libmspack: " << problem;
}

Packed compress(const QByteArray &data, int window, int level, bool e8)
{
    LzxOptions options;
    options.windowBits = window;
    options.level = level;
    options.e8Translation = e8;
    Packed packed;
    packed.blocks = LzxCompressBuffer(
        reinterpret_cast<const unsigned char *>(data.constData()), size_t(data.size()), options);
    for (const EncodedBlock &block : packed.blocks)
        packed.payloadBytes += block.payload.size();
    return packed;
}

// The most a kind may take compressed, so that an encoder that stops finding matches shows up;
// -1 where the data leaves no promise.
qint64 compressedBound(Kind kind, qsizetype size)
{
    const qint64 blocks = (size + qb::cab::kBlockSize - 1) / qb::cab::kBlockSize;
    switch (kind) {
    case Kind::Zeros:
    case Kind::OneByte:
    case Kind::E8Run:
    case Kind::Period3:
        return size / 16 + 256 * blocks + 64;
    case Kind::Period1000:
        return size / 8 + 1500 + 256 * blocks;
    case Kind::Text:
        return size * 6 / 10 + 256 * blocks + 64;
    case Kind::Random:
        return size + size / 64 + 64 * blocks + 64;
    case Kind::Records:
        return size / 3 + 256 * blocks;
    case Kind::Dna:
        return size * 4 / 10 + 256 * blocks;
    case Kind::Alpha32:
        return size * 7 / 10 + 256 * blocks;
    case Kind::LongMatches:
    case Kind::X86:
    case Kind::Mixed:
    case Kind::WindowEdge:
        return -1;
    }
    return -1;
}

// ---------------------------------------------------------------------------------------------
// libmspack in process over all windows and levels, translation on and off

class LzxInProcess : public ::testing::TestWithParam<std::tuple<int, int>>
{
};

TEST_P(LzxInProcess, LibmspackGetsTheBytesBack)
{
    const auto [window, level] = GetParam();
    const Case cases[] = {{Kind::Text, 70000}, {Kind::X86, 70001}, {Kind::LongMatches, 100000},
        {Kind::Random, 33000}, {Kind::Period3, 40000}, {Kind::E8Run, 32770}, {Kind::OneByte, 65536},
        {Kind::Period1000, 2}, {Kind::Zeros, 1}, {Kind::Records, 80000}, {Kind::Dna, 60000},
        {Kind::Alpha32, 50000}, {Kind::Mixed, 200000}, {Kind::WindowEdge, qsizetype(1) << window}};
    for (const Case &c : cases) {
        // A window's worth of random bytes is slow to make and to search at the widest windows.
        if (c.kind == Kind::WindowEdge && window > 18 && level != 1 && level != 5 && level != 9)
            continue;
        const QByteArray data = makeData(c.kind, c.size);
        for (const bool e8 : {true, false}) {
            // The kinds without calls need not run twice.
            if (!e8 && c.kind != Kind::X86 && c.kind != Kind::E8Run && c.kind != Kind::Text)
                continue;
            SCOPED_TRACE(caseName(c).toStdString() + (e8 ? " e8 on" : " e8 off"));
            const Packed packed = compress(data, window, level, e8);
            checkBlockShape(packed.blocks, data.size());
            const qint64 bound = compressedBound(c.kind, c.size);
            if (bound >= 0) {
                EXPECT_LE(packed.payloadBytes, bound) << "compressed size";
            }
            expectMspackRoundTrip(packed.blocks, window, data);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Lzx, LzxInProcess,
    ::testing::Combine(::testing::Range(15, 22), ::testing::Range(1, 10)), [](const auto &info) {
        return "w" + std::to_string(std::get<0>(info.param)) + "_l" + std::to_string(std::get<1>(info.param));
    });

// ---------------------------------------------------------------------------------------------
// The encoder fed the way the cabinet writer feeds it: whole blocks per call, the last call maybe
// empty.

struct ChunkRow
{
    std::string name;
    int window;
    int level;
    Kind kind;
    qsizetype size;
    int blocksPerCall;
};

void PrintTo(const ChunkRow &row, std::ostream *os)
{
    *os << row.name;
}

class LzxEncoderCalls : public ::testing::TestWithParam<ChunkRow>
{
};

TEST_P(LzxEncoderCalls, PiecesMakeOneStream)
{
    const ChunkRow &row = GetParam();
    const QByteArray data = makeData(row.kind, row.size);
    LzxOptions options;
    options.windowBits = row.window;
    options.level = row.level;
    LzxEncoder encoder(options);
    EXPECT_EQ(encoder.compressionType(), qb::cab::lzxCompressionType(row.window));

    std::vector<EncodedBlock> blocks;
    const auto *p = reinterpret_cast<const unsigned char *>(data.constData());
    const qsizetype step = qsizetype(row.blocksPerCall) * qb::cab::kBlockSize;
    qsizetype at = 0;
    // Only whole steps go before the last call, as CabinetWriter does; the last may be empty.
    while (data.size() - at >= step) {
        encoder.encode(p + at, size_t(step), false, blocks);
        at += step;
    }
    encoder.encode(p + at, size_t(data.size() - at), true, blocks);
    checkBlockShape(blocks, data.size());
    expectMspackRoundTrip(blocks, row.window, data);
}

INSTANTIATE_TEST_SUITE_P(Lzx, LzxEncoderCalls,
    ::testing::Values(ChunkRow {"w15_one_block_calls", 15, 5, Kind::LongMatches, 10 * 32768 + 5, 1},
        ChunkRow {"w15_last_call_empty", 15, 9, Kind::X86, 6 * 32768, 2},
        ChunkRow {"w16_three_block_calls", 16, 3, Kind::Text, 400000, 3},
        ChunkRow {"w17_last_call_empty", 17, 7, Kind::LongMatches, 8 * 32768, 4},
        ChunkRow {"w21_one_block_calls", 21, 1, Kind::X86, 300000, 1},
        ChunkRow {"w21_writer_rounds", 21, 5, Kind::LongMatches, 2 * 64 * 32768, 64},
        ChunkRow {"w15_only_empty_last_call", 15, 5, Kind::Text, 0, 1}),
    [](const auto &info) { return info.param.name; });

// ---------------------------------------------------------------------------------------------
// Settings outside the usual ones, and reproducible output

TEST(LzxOptions, LevelsOutsideTheRangeStillDecode)
{
    const QByteArray data = makeData(Kind::Text, 100000);
    for (const int level : {0, -1, 10, 1000}) {
        SCOPED_TRACE("level " + std::to_string(level));
        const Packed packed = compress(data, 16, level, true);
        checkBlockShape(packed.blocks, data.size());
        expectMspackRoundTrip(packed.blocks, 16, data);
    }
}

TEST(LzxOptions, SameInputSameBytes)
{
    // Different output from the same input would mean something read memory it never wrote.
    const QByteArray data = makeData(Kind::X86, 200000) + makeData(Kind::LongMatches, 200000);
    for (const int level : {1, 5, 9}) {
        SCOPED_TRACE("level " + std::to_string(level));
        const Packed first = compress(data, 17, level, true);
        const Packed second = compress(data, 17, level, true);
        ASSERT_EQ(first.blocks.size(), second.blocks.size());
        for (size_t i = 0; i < first.blocks.size(); ++i)
            EXPECT_TRUE(first.blocks[i].payload == second.blocks[i].payload) << "block " << i;
    }
}

// ---------------------------------------------------------------------------------------------
// Call translation pays on x86 code

struct E8Row
{
    std::string name;
    std::function<QByteArray()> source;
    int window;
    int level;
};

QByteArray executablePrefix(const char *path, qint64 bytes)
{
    QFile file(QString::fromLatin1(path));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return file.read(bytes);
}

void PrintTo(const E8Row &row, std::ostream *os)
{
    *os << row.name;
}

class LzxE8Translation : public ::testing::TestWithParam<E8Row>
{
};

TEST_P(LzxE8Translation, TranslatedIsSmallerAndBothDecode)
{
    const E8Row &row = GetParam();
    const QByteArray data = row.source();
    if (data.isEmpty())
        GTEST_SKIP() << "no such input on this machine";
    const Packed on = compress(data, row.window, row.level, true);
    const Packed off = compress(data, row.window, row.level, false);
    for (const Packed *packed : {&on, &off}) {
        SCOPED_TRACE(packed == &on ? "translated" : "untranslated");
        checkBlockShape(packed->blocks, data.size());
        expectMspackRoundTrip(packed->blocks, row.window, data);
    }
    EXPECT_LT(on.payloadBytes, off.payloadBytes)
        << "translated " << on.payloadBytes << " bytes, untranslated " << off.payloadBytes;
}

INSTANTIATE_TEST_SUITE_P(Lzx, LzxE8Translation,
    ::testing::Values(E8Row {"fake_x86_w21_l5", [] { return makeData(Kind::X86, 1 << 20, 77); }, 21, 5},
        E8Row {"fake_x86_w16_l9", [] { return makeData(Kind::X86, 300000, 78); }, 16, 9},
        E8Row {"fake_x86_w15_l1", [] { return makeData(Kind::X86, 300000, 79); }, 15, 1},
        E8Row {"cmake_w21_l5", [] { return executablePrefix("/usr/bin/cmake", 2 << 20); }, 21, 5},
        E8Row {"cmake_w17_l2", [] { return executablePrefix("/usr/bin/cmake", 2 << 20); }, 17, 2}),
    [](const auto &info) { return info.param.name; });

// ---------------------------------------------------------------------------------------------
// The checks above would catch a broken stream: a changed byte is noticed

TEST(LzxOracle, ADamagedStreamIsNoticed)
{
    const QByteArray data = makeData(Kind::Text, 100000);
    const Packed packed = compress(data, 15, 5, true);
    ASSERT_GE(packed.blocks.size(), 2u);

    // With the old checksum, the damaged block is refused as such.
    std::vector<EncodedBlock> damaged = packed.blocks;
    QByteArray &payload = damaged[1].payload;
    payload[payload.size() / 2] = char(payload.at(payload.size() / 2) ^ 0x5A);
    const QByteArray cabinet
        = qb::test::AssembleCabinet(qb::cab::lzxCompressionType(15), damaged, {{"t", data}});
    const QByteArray honest
        = qb::test::AssembleCabinet(qb::cab::lzxCompressionType(15), packed.blocks, {{"t", data}});
    // The data blocks close the cabinet, so the second one's checksum is found from the end.
    qsizetype tail = 0;
    for (const EncodedBlock &block : packed.blocks)
        tail += qsizetype(qb::cab::kDataHeaderSize) + block.payload.size();
    const qsizetype secondBlock
        = honest.size() - tail + qsizetype(qb::cab::kDataHeaderSize) + packed.blocks[0].payload.size();
    QByteArray stale = cabinet;
    stale.replace(secondBlock, 4, honest.mid(secondBlock, 4));
    const qb::test::UnpackResult refused = qb::test::UnpackWithMspack(stale);
    EXPECT_EQ(refused.error, MSPACK_ERR_CHECKSUM) << refused.describe().toStdString();

    // With a matching checksum only the stream itself can give the damage away.
    const qb::test::UnpackResult unpacked = qb::test::UnpackWithMspack(cabinet);
    const bool noticed
        = unpacked.error != MSPACK_ERR_OK || unpacked.files.size() != 1 || unpacked.files[0].bytes != data;
    EXPECT_TRUE(noticed);

    // And the undamaged cabinet comes back whole, so the two failures above are the damage's.
    const qb::test::UnpackResult whole = qb::test::UnpackWithMspack(honest);
    ASSERT_EQ(whole.error, MSPACK_ERR_OK) << whole.describe().toStdString();
    ASSERT_EQ(whole.files.size(), 1);
    EXPECT_TRUE(whole.files[0].bytes == data);
}

} // namespace
