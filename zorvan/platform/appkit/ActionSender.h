#pragma once

namespace zorvan {

/// What may send an action: views, and the items of toolbars and menus.
class ActionSender {
public:
    virtual ~ActionSender() = default;

protected:
    ActionSender() = default;
    ActionSender(const ActionSender&) = default;
    ActionSender& operator=(const ActionSender&) = default;
};

} // namespace zorvan
