// The window of the interface, as one of Qt.
// Link Zorvan::QtHost, Qt6::Widgets.

#include <zorvan/hosts/QtWindowHost.h>
#include <zorvan/interface.h>
#include <zorvan/platform/dispatch/DispatchQueue.h>

#include <QApplication>
#include <QWidget>
#include <iostream>

using namespace zorvan;

int main(int count, char** arguments) {
    QApplication application(count, arguments);
    const auto window = NSWindow::create({200, 100}, "Photos");
    const auto button = NSButton::create(
        {.title = "Quit", .action = Selector("quit", [&] { application.quit(); })});
    window->contentView()->addSubview(button);

    const auto host = QtWindowHost::show(window); // with a title bar of the desktop
    std::cout << host->widget().windowTitle().toStdString() << '\n';
    // Qt's event loop runs the main queue. Here the program clicks the button itself.
    DispatchQueue::main()->async([&] { button->performClick(); });
    return application.exec();
}
