#include "appkit/NSAlert.h"

#include <algorithm>
#include <memory>
#include <utility>

#include <QApplication>
#include <QCheckBox>
#include <QGridLayout>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QSpacerItem>
#include <QStringList>

#include "appkit/EnterKey.h"

namespace vantro {
namespace {

constexpr int minimumWidth = 380;

NSAlert::Presenter& ownPresenter()
{
    static NSAlert::Presenter presenter;
    return presenter;
}

QMessageBox::Icon icon(NSAlert::Style style)
{
    switch (style) {
    case NSAlert::Style::Warning:
        return QMessageBox::Warning;
    case NSAlert::Style::Informational:
        return QMessageBox::Information;
    case NSAlert::Style::Critical:
        return QMessageBox::Critical;
    }
    return QMessageBox::NoIcon;
}

QString plainParagraphs(const QStringList& texts)
{
    QStringList shown;
    for (const QString& text : texts)
        if (!text.isEmpty())
            shown += text;
    return shown.join(QStringLiteral("\n\n"));
}

/// The window to stand in front of, active by now or not; null where there is none.
QWidget* frontWindow()
{
    if (QWidget* const modal = QApplication::activeModalWidget())
        return modal;
    if (QWidget* const active = QApplication::activeWindow())
        return active;
    const auto windows = QApplication::topLevelWidgets();
    const auto visible =
        std::find_if(windows.begin(), windows.end(), [](const QWidget* window) { return window->isVisible(); });
    return visible == windows.end() ? nullptr : *visible;
}

int presentWindow(NSAlert& alert)
{
    const QPointer<QWidget> front = frontWindow();
    QMessageBox box(icon(alert.alertStyle), alert.windowTitle, alert.messageText, QMessageBox::NoButton, front);
    box.setTextFormat(Qt::PlainText);
    box.setInformativeText(plainParagraphs({alert.informativeText, alert.accessoryText}));

    std::vector<QPushButton*> buttons;
    for (const QString& title : alert.buttons())
        buttons.push_back(box.addButton(title, buttons.empty() ? QMessageBox::AcceptRole : QMessageBox::RejectRole));
    const auto defaultIndex = static_cast<std::size_t>(alert.defaultButton - NSAlert::firstButtonReturn);
    for (QPushButton* const button : buttons)
        leaveEnterToDefaultButton(button);
    box.setDefaultButton(buttons.at(defaultIndex));
    box.setEscapeButton(buttons.back());
    if (alert.suppressionTitle) {
        box.setCheckBox(std::make_unique<QCheckBox>(*alert.suppressionTitle).release());
        box.checkBox()->setChecked(alert.isSuppressed);
    }

    // Wide enough for the title and for lines that read well.
    if (auto* const content = qobject_cast<QGridLayout*>(box.layout()))
        content->addItem(std::make_unique<QSpacerItem>(minimumWidth, 0).release(), content->rowCount(), 0, 1,
                         content->columnCount());
    box.exec();
    // A window manager that loses this window and the one behind it in one go may give the focus to none.
    QWidget* behind = front;
    while (behind != nullptr && !behind->isVisible())
        behind = behind->parentWidget();
    if (behind != nullptr)
        behind->activateWindow();
    if (alert.suppressionTitle)
        alert.isSuppressed = box.checkBox()->isChecked();
    const auto clicked = std::find(buttons.begin(), buttons.end(), box.clickedButton());
    return NSAlert::firstButtonReturn + static_cast<int>(clicked - buttons.begin());
}

} // namespace

int NSAlert::runModal()
{
    return ownPresenter() ? ownPresenter()(*this) : presentWindow(*this);
}

void NSAlert::setPresenter(Presenter presenter)
{
    ownPresenter() = std::move(presenter);
}

} // namespace vantro
