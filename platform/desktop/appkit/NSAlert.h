#pragma once

#include <functional>
#include <optional>
#include <vector>

#include <QString>

namespace vantro {

/// A modal question or message. Main thread.
class NSAlert
{
  public:
    enum class Style
    {
        Warning,
        Informational,
        Critical
    };

    /// The return codes of runModal(): by the order in which the buttons were added, wherever the desktop puts them.
    static constexpr int firstButtonReturn = 1000;
    static constexpr int secondButtonReturn = 1001;

    /// Shows an alert and returns the code of the button that answered it.
    using Presenter = std::function<int(NSAlert&)>;

    QString windowTitle;
    Style alertStyle = Style::Warning;
    QString messageText;
    QString informativeText;
    /// A text below the others, as a label of its own.
    QString accessoryText;
    /// The title of the suppression check box; absent shows none.
    std::optional<QString> suppressionTitle;
    /// Whether the suppression check box is ticked; up to date when runModal() has returned.
    bool isSuppressed = false;

    void addButton(const QString& title) { buttons_.push_back(title); }
    [[nodiscard]] const std::vector<QString>& buttons() const { return buttons_; }

    /// The button that Enter presses, by its return code; the first one unless set.
    int defaultButton = firstButtonReturn;

    /// Shows the alert over whatever window is in front and returns when it was answered. Esc and the close button
    /// answer with the last button.
    int runModal();

    /// Every alert goes through the one presenter; a program that shows none in windows (a test) sets its own. An empty
    /// one brings the windows back.
    static void setPresenter(Presenter presenter);

  private:
    std::vector<QString> buttons_;
};

} // namespace vantro
