#pragma once

namespace zorvan {

/// GLib's event loop, and so GTK's, as what runs the blocks of the main queue.
class GLibMainQueue {
public:
    /// From now on the loop of the default main context runs the blocks as they come, also while a
    /// block runs that loop itself, for a question to the user, say. Once is enough. Main thread
    /// only.
    static void attach();
};

} // namespace zorvan
