#include <zorvan/hosts/qtmodels/QKeySequence.h>

#include <zorvan/hosts/qtmodels/internal/namedKeys.h>

namespace zorvan {

QKeySequence toQKeySequence(EventKeyCode code, Qt::KeyboardModifiers modifiers) {
    const auto keys = internal::namedKeys();
    const auto found = std::find_if(keys.begin(), keys.end(),
                                    [code](const auto& named) { return *named.code == code; });
    return found == keys.end() ? QKeySequence()
                               : QKeySequence(QKeyCombination(modifiers, found->key));
}

std::optional<EventKeyCode> toEventKeyCode(Qt::Key key) {
    const EventKeyCode* code = internal::codeOfKey(key);
    return code ? std::optional(*code) : std::nullopt;
}

std::optional<EventKeyCode> toEventKeyCode(const QKeySequence& shortcut) {
    return shortcut.count() == 1 ? toEventKeyCode(shortcut[0].key()) : std::nullopt;
}

} // namespace zorvan
