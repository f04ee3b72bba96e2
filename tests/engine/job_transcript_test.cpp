// Whole jobs recorded as transcripts: every event with all its parameters, in order, for a
// normal run, a cancel, a suspend and resume, a missing tool and a two-pass run. The recorded
// transcripts under transcripts/ are the contract; QB_RECORD_TRANSCRIPTS=1 rewrites them on purpose.
#include "engine/command_line.h"
#include "engine/engine_recorder.h"
#include "engine/ffmpegx.h"
#include "support/temp_tree.h"

#include <QFile>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace qb::engine {
namespace {

using test::TempTree;

QString visible(QString text)
{
    return text.replace(u'\\', u"\\\\"_s).replace(u'\r', u"\\r"_s).replace(u'\n', u"\\n"_s);
}

// Every event with every parameter, one line each.
class Transcript
{
public:
    Transcript(FFmpegX &engine, QString root)
        : m_root(std::move(root))
    {
        QObject::connect(&engine, &FFmpegX::StatusChange,
            [this](int code, const QString &text) { add(u"status %1 %2"_s.arg(code).arg(text)); });
        QObject::connect(&engine, &FFmpegX::ProgressChange,
            [this](int value, int max, int fps, const QString &remainder, const QString &info, bool last) {
                add(u"progress %1/%2 fps %3 [%4] [%5] %6"_s.arg(value).arg(max).arg(fps).arg(
                    remainder, info, last ? u"last"_s : u"-"_s));
            });
        QObject::connect(
            &engine, &FFmpegX::PipeChange, [this](const QString &text) { add(u"pipe "_s + text); });
        QObject::connect(
            &engine, &FFmpegX::ScriptChange, [this](const QString &text) { add(u"script "_s + text); });
        QObject::connect(
            &engine, &FFmpegX::PriorityChanged, [this](int cls) { add(u"priority %1"_s.arg(cls)); });
    }

    QString text() const { return m_lines.join(u'\n') + u'\n'; }

private:
    void add(QString line) { m_lines.append(visible(line.replace(m_root, u"<root>"_s))); }

    QString m_root;
    QStringList m_lines;
};

class JobTranscript : public ::testing::Test
{
protected:
    void SetUp() override
    {
        source = tree.writeFile(u"in/clip.avi"_s, "not really a video");
        tool = tree.path(u"tools/tool.sh"_s);
        tree.makeDir(u"out"_s);
        output = tree.path(u"out/clip.mp4"_s);
        ffx.setClock([] { return QTime(12, 0, 0); });
        ffx.setFileName(source);
        ffx.setCore(tree.writeFile(u"tools/core"_s, "#!/bin/sh\n"));
        ffx.setOutputDir(tree.path(u"out"_s));
        ffx.FileOutput.OutputFileName = output;
        ffx.setCommandComposer([this](int pass) { return u'"' + tool + u"\" "_s + QString::number(pass); });
    }

    void writeTool(const QString &body) { ASSERT_FALSE(test::writeToolScript(tool, body).isEmpty()); }

    // Runs the job to its end and compares what it raised with the recorded transcript.
    void runAndCompare(const char *name)
    {
        ffx.StartProcess();
        ASSERT_TRUE(test::waitForJobEnd(ffx));
        const QString path = QStringLiteral(QB_TRANSCRIPT_DIR "/") + QLatin1String(name) + u".events"_s;
        if (qEnvironmentVariableIsSet("QB_RECORD_TRANSCRIPTS")) {
            QFile file(path);
            ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
            file.write(events.text().toUtf8());
            return;
        }
        EXPECT_EQ(events.text().toStdString(), test::readAll(path).toStdString()) << name;
    }

    TempTree tree;
    QString source;
    QString tool;
    QString output;
    FFmpegX ffx;
    Transcript events {ffx, tree.root()};
};

// Progress as the encoder prints it, long enough for several 256-byte reads, in one write.
const char *const kProgressTool = R"(out="$(dirname "$0")/../out/clip.mp4"
head -c 4096 /dev/zero > "$out"
cat <<'EOF'
Input #0, avi, from 'clip.avi':
  Duration: 00:00:10.00, start: 0.000000, bitrate: 1200 kb/s
Output #0, mp4, to 'clip.mp4':
frame=   50 fps= 25 q=28.0 size=     100kB time=00:00:02.00 bitrate= 327.7kbits/s speed=1.0x    
frame=  100 fps= 25 q=28.0 size=     200kB time=00:00:04.00 bitrate= 327.7kbits/s speed=1.0x    
frame=  150 fps= 25 q=28.0 size=     300kB time=00:00:06.00 bitrate= 327.7kbits/s speed=1.0x    
frame=  250 fps= 25 q=-1.0 Lsize=     500kB time=00:00:10.00 bitrate= 409.6kbits/s speed=1.0x    
video:500kB audio:0kB muxing overhead: 0.1%
EOF)";

TEST_F(JobTranscript, NormalRun)
{
    writeTool(QString::fromUtf8(kProgressTool));
    runAndCompare("normal");
}

TEST_F(JobTranscript, TwoPassRun)
{
    ffx.Job.Twopass = true;
    // The pass's line goes out in the same write as the rest, so that no read can fall between.
    QString tool = QString::fromUtf8(kProgressTool);
    tool.replace(u"cat <<'EOF'\n"_s, u"text=$(cat <<'EOF'\n"_s);
    tool += u"\n)\nprintf '%s\\npass %s done\\n' \"$text\" \"$1\""_s;
    writeTool(tool);
    runAndCompare("two_pass");
}

TEST_F(JobTranscript, MissingTool)
{
    tool = tree.path(u"tools/absent"_s);
    runAndCompare("missing_tool");
}

TEST_F(JobTranscript, CancelAtTheFirstProgressLine)
{
    QObject::connect(&ffx, &FFmpegX::PipeChange, &ffx, [this](const QString &text) {
        if (text.contains(u"frame="_s))
            ffx.CancelProcess();
    });
    writeTool(uR"(out="$(dirname "$0")/../out/clip.mp4"
head -c 4096 /dev/zero > "$out"
printf '  Duration: 00:00:10.00, start: 0.000000, bitrate: N/A\nframe=   50 fps= 25 q=28.0 size=  100kB time=00:00:02.00 bitrate= 1.0kbits/s speed=1x    \r'
head -c 1 > /dev/null
printf 'key read\n')"_s);
    ffx.FileOutput.RemoveFileAfterCanceled = true;
    runAndCompare("cancel");
    EXPECT_FALSE(QFile::exists(output));
}

TEST_F(JobTranscript, SuspendAndResume)
{
    QObject::connect(&ffx, &FFmpegX::PipeChange, &ffx, [this](const QString &text) {
        if (text.contains(u"first"_s)) {
            ffx.SuspendApp();
            QTimer::singleShot(150, &ffx, [this] { ffx.ResumeApp(); });
        }
    });
    writeTool(uR"(out="$(dirname "$0")/../out/clip.mp4"
head -c 4096 /dev/zero > "$out"
printf 'first\n'
sleep 0.4
printf 'second\n')"_s);
    runAndCompare("suspend_resume");
}

} // namespace
} // namespace qb::engine
