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
    int code;
    if (!answers_.empty()) {
        code = answers_.front();
        answers_.pop_front();
    } else {
        switch (style & 7) {
        case 3:
        case 4: code = Yes; break;
        case 2: code = 3; break; // Abort
        case 5: code = 4; break; // Retry
        default: code = Ok;
        }
    }
    shown_.push_back(ShownMessage{prompt, title, style, picture, code});
    return code;
}

QString MessageScript::takeFileName()
{
    if (fileNames_.empty())
        return QString();
    const QString path = fileNames_.front();
    fileNames_.pop_front();
    return path;
}
