// Stand-ins for the window's parts: a strip that records what it shows, menus as plain flags,
// and dialogs that give prepared answers and record what they were asked.
#pragma once

#include "workbench/menu_surface.h"
#include "workbench/strip_surface.h"
#include "workbench/user_dialogs.h"

#include <QList>
#include <QMap>
#include <QStringList>

#include <deque>

namespace qb::test {

class RecordingStrip : public workbench::StripSurface
{
public:
    QString Caption() const override { return m_caption; }
    void setCaption(const QString &text) override
    {
        m_caption = text;
        captions.append(text);
    }
    double value() const override { return m_value; }
    void setvalue(double position) override
    {
        m_value = position;
        values.append(position);
    }
    double Max() const override { return m_max; }
    void setMax(double end) override { m_max = end; }
    bool Refresh() const override { return m_refresh; }
    void setRefresh(bool on) override { m_refresh = on; }

    QStringList captions;
    QList<double> values;

private:
    QString m_caption;
    double m_value = 0;
    double m_max = 100;
    bool m_refresh = true;
};

class MenuFlags : public workbench::MenuSurface
{
public:
    void setMenuEnabled(workbench::Menu menu, bool on) override { m_enabled[int(menu)] = on; }
    bool menuEnabled(workbench::Menu menu) const override { return m_enabled.value(int(menu), true); }

private:
    QMap<int, bool> m_enabled;
};

// Answers in the order they are prepared; a question with nothing prepared is answered No (or
// cancelled) and still recorded.
class ScriptedDialogs : public workbench::UserDialogs
{
public:
    int MsgBox(const QString &Prompt, int Buttons) override
    {
        messages.append({Prompt, Buttons});
        if (answers.empty())
            return Buttons == workbench::kYesNo ? workbench::kAnswerNo : workbench::kAnswerOk;
        const int answer = answers.front();
        answers.pop_front();
        return answer;
    }
    workbench::ChosenFiles GetOpenFiles(const QString &filter, const QString &, bool several) override
    {
        openFilters.append(filter + (several ? QStringLiteral(" several") : QStringLiteral(" one")));
        if (files.empty())
            return {};
        workbench::ChosenFiles chosen = files.front();
        files.pop_front();
        return chosen;
    }
    QString GetSaveFile(const QString &, const QString &proposed) override
    {
        proposedSaves.append(proposed);
        if (saves.empty())
            return {};
        const QString chosen = saves.front();
        saves.pop_front();
        return chosen;
    }
    QString SelectFolder(const QString &Title) override
    {
        folderTitles.append(Title);
        if (folders.empty())
            return {};
        const QString chosen = folders.front();
        folders.pop_front();
        return chosen;
    }
    void OpenWithSystem(const QString &path) override { opened.append(path); }

    std::deque<int> answers;
    std::deque<workbench::ChosenFiles> files;
    std::deque<QString> saves;
    std::deque<QString> folders;

    QList<std::pair<QString, int>> messages;
    QStringList openFilters;
    QStringList proposedSaves;
    QStringList folderTitles;
    QStringList opened;
};

} // namespace qb::test
