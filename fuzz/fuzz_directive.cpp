// Fuzz target: directive files of arbitrary bytes through the interpreter, its /D path and its plan.
#include "cabmaker/directive_interpreter.h"
#include "fuzz_check.h"

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <cstdlib>

using namespace qb::cabmaker;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    // Without "/" every source path stays below a folder that does not exist, so an absolute path
    // or a "..\.." cannot open a real file: only stat calls reach the file system.
    bytes.replace('/', '_');
    // Nor may a character reference make one (%#47%): a number that starts with 1 never is 47.
    bytes.replace("%#", "%#1");

    const QString folder = QStringLiteral("/nonexistent-qb-fuzz");
    DirectiveInterpreter interpreter;
    interpreter.setCurrentFolder(folder);
    interpreter.setOutputFolder(QStringLiteral("out"));

    // The first line doubles as a /D name=value.
    const QString first = QString::fromUtf8(bytes.left(bytes.indexOf('\n')));
    const qsizetype equals = first.indexOf(u'=');
    interpreter.define(first.left(equals), equals < 0 ? QString() : first.mid(equals + 1));

    // Twice, as two /f files: state that carries over must not break anything.
    interpreter.run(bytes, QStringLiteral("fuzz.ddf"));
    interpreter.run(bytes, QStringLiteral("again.ddf"));
    const bool finished = interpreter.finish();
    check(finished == interpreter.errors().isEmpty());
    check(interpreter.errors().size() <= DirectiveInterpreter::kMaxErrors);
    for (const DirectiveError &error : interpreter.errors()) {
        check(!error.message.isEmpty() && error.line >= 0);
        check(!error.toString().contains(u'\n'));
    }

    const BuildPlan plan = interpreter.plan();
    check(plan.cabinetPath.isEmpty() || plan.cabinetPath.startsWith(u'/'));
    check(plan.maxCabinetSize >= 0 && plan.folderSizeThreshold >= 0 && plan.folderFileCountThreshold >= 0);
    for (const PlannedFolder &planned : plan.folders) {
        check(!planned.files.isEmpty());
        check(planned.settings.lzxWindowBits >= 15 && planned.settings.lzxWindowBits <= 21);
        check(planned.settings.lzxLevel == -1
            || (planned.settings.lzxLevel >= 1 && planned.settings.lzxLevel <= 9));
        for (const PlannedFile &file : planned.files) {
            check(file.sourcePath.startsWith(folder + u'/'));
            check(!file.nameInCabinet.isEmpty() && !file.nameInCabinet.startsWith(u'\\'));
            check(file.line > 0);
        }
    }
    return 0;
}
