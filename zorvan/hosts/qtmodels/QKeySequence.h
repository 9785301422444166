#pragma once

#include <zorvan/text/EventKeyCode.h>

#include <QKeySequence>
#include <optional>

namespace zorvan {

/// The shortcut of the key that `EventKeyCode` names now with that code; empty when none has it.
[[nodiscard]] QKeySequence toQKeySequence(EventKeyCode code,
                                          Qt::KeyboardModifiers modifiers = Qt::NoModifier);

/// The code that `EventKeyCode` has now for a key of Qt; absent for a key that it does not name.
/// For Qt a letter is what the key gives, for the code where it is on the board.
[[nodiscard]] std::optional<EventKeyCode> toEventKeyCode(Qt::Key key);
/// That of the only key of a shortcut, whatever its modifiers; absent for a shortcut of several.
[[nodiscard]] std::optional<EventKeyCode> toEventKeyCode(const QKeySequence& shortcut);

} // namespace zorvan
