// The floor of a start: an application with one empty window, which says when it is shown.

#include <cstdio>

#include <QApplication>
#include <QWidget>

int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    QWidget window;
    window.resize(420, 340);
    window.show();
    std::fputs("shown\n", stderr);
    return QApplication::exec();
}
