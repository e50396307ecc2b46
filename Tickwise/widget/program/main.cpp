#include "widget/program/WidgetProgram.h"

#include <QApplication>

int main(int argc, char **argv)
{
    if (!tickwise::prepareWidgetProcess())
        return 1;
    const QApplication application(argc, argv);
    return tickwise::WidgetProgram().run();
}
