#include "WindowFixture.h"
#include "config/SettingsWrapper.h"
#include "control/WebToken.h"
#include "gui/frmControlPanel.h"

#include <QClipboard>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QSpinBox>

namespace {

// The web page's panel stores the port and address the page is served on,
// refuses an address that is none with its reason, and hands over the token.
TEST_F(WindowFixture, TheWebPagePanelStoresItsPortAndAddressAndHandsOverTheToken) {
    frmControlPanel* panel = window->showControlPanel(18);
    QWidget* page = panel->page(18);
    auto* port = page->findChild<QSpinBox*>(QStringLiteral("h3hPort"));
    auto* address = page->findChild<QLineEdit*>(QStringLiteral("h3hAddress"));
    ASSERT_TRUE(port && address);
    const auto save = [panel, page] {
        QTest::mouseClick(panel->findChild<QPushButton*>(page->parentWidget()->objectName() +
                                                         QStringLiteral("Save")),
                          Qt::LeftButton);
    };
    SettingsWrapper& settings = SettingsWrapper::instance();

    port->setValue(8460);
    address->setText(QStringLiteral("my.host"));
    save();
    EXPECT_TRUE(panel->findChild<QMessageBox*>(QStringLiteral("msgNotSaved")));
    EXPECT_EQ(settings.WebPort(), 0) << "nothing is stored from a refused page";
    EXPECT_EQ(settings.WebAddress(), QStringLiteral("127.0.0.1"));

    address->setText(QStringLiteral("::1"));
    save();
    EXPECT_EQ(settings.WebPort(), 8460);
    EXPECT_EQ(settings.WebAddress(), QStringLiteral("::1"));

    QTest::mouseClick(page->findChild<QPushButton*>(QStringLiteral("h3hCopy")), Qt::LeftButton);
    EXPECT_EQ(QApplication::clipboard()->text(), WebToken::Ensure(nullptr));
    settings.setWebPort(0);
    settings.setWebAddress(QStringLiteral("127.0.0.1"));
}

} // namespace
