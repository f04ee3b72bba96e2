// Recognising tools by their banners, old and today's, and cutting their versions.
#include "engine/tool_catalogue.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace qb::engine {
namespace {

TEST(ToolCatalogue, BannersOfBothGenerationsNameTheToolAndItsVersion)
{
    struct Case
    {
        QString banner; // or, for tools with a second run, that run's text
        int status;
        QString version;
    };
    const Case cases[] = {
        // Today's Debian tools, as they print.
        {u"ffmpeg version 5.1.9-0+deb12u1 Copyright (c) 2000-2026 the FFmpeg developers\n"_s, 1,
            u"5.1.9-0+deb12u1"_s},
        {u"MEncoder UNKNOWN-12 (C) 2000-2023 MPlayer Team\n"_s, 2, u"UNKNOWN-12"_s},
        {u"x264 core:164 r3095 baee400\nSyntax: x264 [options] -o outfile infile\n"_s, 3,
            u"core:164 r3095 baee400"_s},
        {u"mkvmerge v74.0.0 ('You Oughta Know') 64-bit\n"_s, 5, u"74.0.0"_s},
        // The older generation: a comma behind the version, and carriage returns.
        {u"FFmpeg version SVN-r15261, Copyright (c) 2000-2008 Fabrice Bellard, et al.\r\n"_s, 1,
            u"SVN-r15261"_s},
        {u"MEncoder 1.0rc2-4.2.1 (C) 2000-2007 MPlayer Team\r\n"_s, 2, u"1.0rc2-4.2.1"_s},
        {u"ASFBIN version asfbin 1.8.2.23. Copyright 2006\r\n"_s, 4, u"1.8.2.23"_s},
        {u"MP4Box - GPAC version 0.4.5-DEV - compiled for win32\r\n"_s, 6, u"GPAC version 0.4.5-DEV"_s},
        {u"MP4Box - GPAC version 0.4.4\r\nGPAC Copyright\r\n"_s, 6, u"GPAC version 0.4.4"_s},
        {u"Helix DNA(TM) Producer 11.0 Build number: 11.0.0.2013\r\n"_s, 7,
            u"11.0 Build number: 11.0.0.2013"_s},
        // Not a known tool: begins-with kinds must begin with their word.
        {u"Welcome to MEncoder\n"_s, 0, {}},
        {u"usage: sometool [options]\n"_s, 0, {}},
    };
    for (const Case &c : cases) {
        const ToolKind *kind = IdentifyTool(c.banner);
        EXPECT_EQ(kind ? kind->status : 0, c.status) << c.banner.toStdString();
        if (kind) {
            EXPECT_EQ(CutToolVersion(*kind, c.banner), c.version) << c.banner.toStdString();
        }
    }
}

} // namespace
} // namespace qb::engine
