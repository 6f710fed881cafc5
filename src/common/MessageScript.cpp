#include "MessageScript.h"

namespace {
MessageScript *current = nullptr;
}

MessageScript::MessageScript() : previous_(current) { current = this; }

MessageScript::~MessageScript() { current = previous_; }

MessageScript *MessageScript::active() { return current; }

QStringList MessageScript::prompts() const
{
    QStringList list;
    for (const ShownMessage &m : shown_)
        list << m.prompt;
    return list;
}

int MessageScript::answer(const QString &prompt, int style, const QString &title, MessagePicture picture)
{
    int code = defaultAnswer(style);
    if (!answers_.empty()) {
        code = answers_.front();
        answers_.pop_front();
    }
    shown_.push_back(ShownMessage{prompt, title, style, picture, code});
    return code;
}

int MessageScript::defaultAnswer(int style)
{
    switch (style & 7) {
    case 3:
    case 4: return Yes;
    case 2: return 3; // Abort
    case 5: return 4; // Retry
    default: return Ok;
    }
}

QString MessageScript::takeFileName()
{
    if (fileNames_.empty())
        return QString();
    const QString path = fileNames_.front();
    fileNames_.pop_front();
    return path;
}
