// Feeds arbitrary tool text to the probe's readers and to the capability reader of both
// generations.
#include "engine/capability_reader.h"
#include "engine/stream_probe.h"
#include "fuzz_check.h"

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString text = QString::fromUtf8(reinterpret_cast<const char *>(data), qsizetype(size));
    using namespace qb::engine;
    StreamFacts facts = FreshFacts(QStringLiteral("input.avi"));
    ReadProbeText(text, facts);
    check(facts.VideoStreamCount >= 0 && facts.AudioStreamCount >= 0 && facts.SubtitleStreamCount >= 0);
    check(facts.VideoWidth >= 0 && facts.VideoHeight >= 0);
    if (const auto graph = ReadMediaGraphAnswer(text))
        ApplyMediaGraph(*graph, facts);
    SummaryFileInfo(facts, QStringLiteral("1KB"));
    GetStreamNumber(text);
    const QString crop = ReadCropDetection(text);
    check(crop.isEmpty() || crop.startsWith(QStringLiteral("crop=")));
    for (const ListingGeneration *generation : {&LegacyListings(), &TodaysListings()}) {
        const Capabilities caps = ReadCapabilities(text, *generation, QStringLiteral("|"));
        check(caps.CoreVideoCodec.startsWith(QStringLiteral("COPY")));
        check(!caps.CoreFormats.endsWith(u'|') && !caps.CoreFilters.endsWith(u'|'));
    }
    ConfigureSwitches(text, QStringLiteral("enable"));
    return 0;
}
