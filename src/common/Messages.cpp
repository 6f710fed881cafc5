#include "Messages.h"

#include "MessageScript.h"

#include <cstdio>

namespace {

MessageReporter *installed = nullptr;
constexpr int YesNoDefaultSecond = 4 + 256;

} // namespace

MessageReporter *InstallMessageReporter(MessageReporter *reporter)
{
    MessageReporter *previous = installed;
    installed = reporter;
    return previous;
}

int ShowHookedBox(const QString &prompt, int style, const QString &title, MessagePicture picture, const QString &iconFile)
{
    if (MessageScript *script = MessageScript::active())
        return script->answer(prompt, style, title, picture);
    if (installed)
        return installed->show(prompt, style, title, picture, iconFile);
    std::fprintf(stderr, "%s: %s\n", qPrintable(title), qPrintable(prompt));
    return MessageScript::defaultAnswer(style);
}

void UserMessage(const QString &prompt) { ShowHookedBox(prompt, 0, QStringLiteral("User Message"), MessagePicture::picmessage); }

bool UserQuestion(const QString &prompt)
{
    return ShowHookedBox(prompt, YesNoDefaultSecond, QStringLiteral("User Question?"), MessagePicture::picQuestion) != MessageScript::No;
}

bool UserWarning(const QString &prompt)
{
    return ShowHookedBox(prompt, YesNoDefaultSecond, QStringLiteral("User Warning"), MessagePicture::picStop) != MessageScript::No;
}
