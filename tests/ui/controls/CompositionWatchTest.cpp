#include "ui/controls/CompositionWatch.h"

#include "doubles/TestProgram.h"

#include <QInputMethodEvent>
#include <QLineEdit>

#include <memory>

using namespace tickwise;

namespace {

void compose(QLineEdit &field, const QString &text)
{
    QInputMethodEvent event(text, {});
    QCoreApplication::sendEvent(&field, &event);
}

void commit(QLineEdit &field, const QString &text)
{
    QInputMethodEvent event;
    event.setCommitString(text);
    QCoreApplication::sendEvent(&field, &event);
}

} // namespace

class CompositionWatchTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void composesUntilTheTextIsCommitted();
    void otherControlsDoNotCount();
    void endsWithTheFocus();
    void endsWithTheField();
};

void CompositionWatchTest::composesUntilTheTextIsCommitted()
{
    QWidget window;
    QLineEdit field(&window);
    const CompositionWatch ofWindow(window);
    const CompositionWatch ofField(field);
    compose(field, QStringLiteral("bi"));
    QVERIFY(ofWindow.isComposing());
    QVERIFY(ofField.isComposing());
    commit(field, QStringLiteral("比"));
    QVERIFY(!ofWindow.isComposing());
    QVERIFY(!ofField.isComposing());
}

void CompositionWatchTest::otherControlsDoNotCount()
{
    QWidget window;
    const CompositionWatch watch(window);
    QLineEdit outside;
    compose(outside, QStringLiteral("bi"));
    QVERIFY(!watch.isComposing());
}

void CompositionWatchTest::endsWithTheFocus()
{
    QWidget window;
    QLineEdit field(&window);
    QLineEdit other(&window);
    const CompositionWatch watch(window);
    window.show();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    field.setFocus();
    compose(field, QStringLiteral("bi"));
    other.setFocus();
    QVERIFY(!watch.isComposing());
}

void CompositionWatchTest::endsWithTheField()
{
    QWidget window;
    auto field = std::make_unique<QLineEdit>(&window);
    const CompositionWatch watch(window);
    compose(*field, QStringLiteral("bi"));
    field.reset();
    QVERIFY(!watch.isComposing());
}

TICKWISE_WIDGET_TEST(CompositionWatchTest)
#include "CompositionWatchTest.moc"
