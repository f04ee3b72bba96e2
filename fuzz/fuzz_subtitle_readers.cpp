// Fuzz target: the subtitle readers on arbitrary lines. The first byte picks the reader, the
// destination and the window; the rest is the file, split into lines as a conversion splits it.
#include "fuzz_check.h"
#include "subtitle/subtitle_reader.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <cstdint>
#include <iterator>

using namespace qb::subtitle;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size == 0)
        return 0;
    static const int kFormats[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 91, 99};
    constexpr unsigned kCount = std::size(kFormats);
    const unsigned choice = data[0];
    const int formatId = kFormats[choice % kCount];

    ReaderState state;
    state.destinationId = (choice / kCount) % 2 ? 2 : 1;
    CueWindow window;
    if (choice >= 2 * kCount)
        window = {1, 30, 0.5, (choice & 1) != 0};

    const QString text = QString::fromUtf8(reinterpret_cast<const char *>(data + 1), qsizetype(size - 1));
    const QStringList pieces = text.split(QStringLiteral("\r\n"));
    const qsizetype visited = pieces.size() - 1;
    CueList cues = EmptyCueList();
    for (qsizetype i = 0; i < visited; ++i) {
        QString line = pieces.at(i);
        line.remove(u'\r').remove(u'\n');
        ReadSubtitleLine(formatId, line, i == visited - 1, state, cues, window);
    }

    // Element 0 is no cue: text lines before the first cue must not land there.
    check(cues.size() >= 1 && cues.at(0).isEmpty());
    // One cue per line, except time tags, which store one per "]".
    const qsizetype tags = formatId == 3 ? text.count(u']') : 0;
    check(cues.size() - 1 <= visited + tags);
    // Stored text stays in proportion to the input: a tagged line may copy its text a bounded
    // number of times, and a time is a few dozen characters.
    qsizetype stored = 0;
    for (qsizetype i = 1; i < cues.size(); ++i)
        stored += cues.at(i).size();
    check(stored <= 66 * text.size() + 48 * (cues.size() - 1));
    check(state.pendingText.size() <= text.size());
    return 0;
}
