// Character conversion through the system's conversion library, with character tables only.
#include "util/chinese_script.h"

#include <QByteArray>
#include <QFile>
#include <QTemporaryDir>

#include <opencc/opencc.h>

#include <mutex>

namespace qb::util {

namespace {

constexpr const char *kDataFolder = "/usr/share/opencc/";

// A converter that segments by and maps with one character table, so that phrases are never
// rewritten. Made once per direction; nullptr when the tables are missing.
class CharacterConverter
{
public:
    explicit CharacterConverter(const char *table)
    {
        const QString dictionary = QString::fromLatin1(kDataFolder) + QString::fromLatin1(table);
        if (!m_folder.isValid() || !QFile::exists(dictionary))
            return;
        const QString config = m_folder.filePath(QStringLiteral("characters.json"));
        QFile file(config);
        if (!file.open(QIODevice::WriteOnly))
            return;
        const QByteArray dict = "{\"type\": \"ocd2\", \"file\": \"" + dictionary.toUtf8() + "\"}";
        file.write("{\"name\": \"characters\", \"segmentation\": {\"type\": \"mmseg\", \"dict\": " + dict
            + "}, \"conversion_chain\": [{\"dict\": " + dict + "}]}");
        file.close();
        const opencc_t handle = opencc_open(QFile::encodeName(config).constData());
        if (handle != reinterpret_cast<opencc_t>(-1))
            m_handle = handle;
    }
    ~CharacterConverter()
    {
        if (m_handle)
            opencc_close(m_handle);
    }
    CharacterConverter(const CharacterConverter &) = delete;
    CharacterConverter &operator=(const CharacterConverter &) = delete;

    QString convert(const QString &text)
    {
        if (!m_handle || text.isEmpty())
            return text;
        const std::lock_guard lock(m_mutex);
        const QByteArray input = text.toUtf8();
        char *output = opencc_convert_utf8(m_handle, input.constData(), size_t(input.size()));
        if (!output)
            return text;
        const QString converted = QString::fromUtf8(output);
        opencc_convert_utf8_free(output);
        return converted;
    }

private:
    QTemporaryDir m_folder;
    opencc_t m_handle = nullptr;
    std::mutex m_mutex;
};

} // namespace

QString ToSimplifiedText(const QString &text)
{
    static CharacterConverter converter("TSCharacters.ocd2");
    return converter.convert(text);
}

QString ToTraditionalText(const QString &text)
{
    static CharacterConverter converter("STCharacters.ocd2");
    return converter.convert(text);
}

} // namespace qb::util
