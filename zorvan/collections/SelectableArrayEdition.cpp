#include <zorvan/collections/SelectableArrayEdition.h>

namespace zorvan {

Notification::UserInfo SelectableArrayEdition::userInfo() const { return {{editionKey, *this}}; }

const SelectableArrayEdition* SelectableArrayEdition::edition(const Notification& note) noexcept {
    return note.value<SelectableArrayEdition>(editionKey);
}

} // namespace zorvan
