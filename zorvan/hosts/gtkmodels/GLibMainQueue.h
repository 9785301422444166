#pragma once

namespace zorvan {

/// GLib's event loop, and so GTK's, as what runs the blocks of the main queue.
class GLibMainQueue {
public:
    /// From now on the loop of the default main context runs the blocks as they come. Once is
    /// enough. Main thread only.
    static void attach();
};

} // namespace zorvan
