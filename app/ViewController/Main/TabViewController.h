#pragma once

#include <atomic>
#include <map>

#include <QSize>

#include "LoggerManager/Logger.h"
#include "appkit/NSTabViewController.h"

namespace vantro {

/// The main window's content: the four pages as tabs. Decides what happens at the tool's start: the sign-in before
/// anything else, the access prompt, the exit of the very first start, the recovery of a broken document. Main thread.
class TabViewController : public NSTabViewController
{
    Q_OBJECT

  public:
    TabViewController();

    void viewDidLoad() override;
    void viewWillAppear() override;
    void viewDidAppear() override;

    /// Set from the moment when a multiple-connections alert is asked for until it has closed. Any thread.
    std::atomic<bool> isDisplayingMultipleConnectionsAlert = false;

    /// The alert stands over whatever is in front: a dialog, another alert, the sign-in. Those can't be used until the
    /// last token has gone, and then go on as they were, texts and input included. A request under way ends first, and
    /// with it its dialog; the alert comes right after. Any thread.
    void onMultipleConnectedYubiKey();

  protected:
    void tabViewWillSelect(const NSTabViewItem* item) override;
    void tabViewDidSelect(const NSTabViewItem* item) override;

  private:
    /// Says that changes are not stored, the first time that they aren't.
    void tellDocumentNotWritten();
    void systemSettingAlert();
    [[nodiscard]] bool isFirstStart();
    void recoverSetting();
    void resizeWindowToFit(const NSTabViewItem* tabViewItem);

    std::map<const NSTabViewItem*, QSize> tabViewSizes;
    const Logger logger;
    bool didAppear = false;
    bool hasToldDocumentNotWritten = false;
};

} // namespace vantro
