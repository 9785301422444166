#pragma once

namespace zorvan {

/// Qt's event loop as what runs the blocks of the main queue.
class QtMainQueue {
public:
    /// From now on the loop of the application object runs the blocks as they come. Once is enough,
    /// and with a `QtWindowHost` it is done already. Without an application object it stops the
    /// program. Main thread only.
    static void attach();
};

} // namespace zorvan
