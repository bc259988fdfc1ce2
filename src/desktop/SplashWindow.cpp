#include "desktop/SplashWindow.h"

#include "session/MachineFacts.h"

#include <QCoreApplication>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QIcon>
#include <QLabel>
#include <QScreen>
#include <QVBoxLayout>

SplashWindow::SplashWindow(const QIcon& icon, QWidget* parent)
    : QWidget(parent, Qt::SplashScreen | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint),
      m_lbl(new QLabel) {
    setObjectName(QStringLiteral("frmLoading"));
    setStyleSheet(QStringLiteral(
        "#frmLoading { background: #15181d; border: 1px solid #3f4850; }"
        "QLabel { color: #d8dce2; } #lblTitle { font-size: 20pt; font-weight: bold; }"
        "#lblVer { color: #8a94a0; } #lbl { color: #a8c8e8; }"));
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(18, 14, 18, 14);
    auto* heading = new QHBoxLayout;
    if (!icon.isNull()) {
        auto* picture = new QLabel;
        picture->setPixmap(icon.pixmap(48, 48));
        heading->addWidget(picture);
    }
    auto* title = new QLabel(QStringLiteral("Corvantide"));
    title->setObjectName(QStringLiteral("lblTitle"));
    heading->addWidget(title, 1);
    // The splash shows before the start reads the machine's facts.
    if (Machine().OperatingSystem.isEmpty()) ReadMachineFacts();
    auto* version = new QLabel(QStringLiteral("v") + Machine().versionText());
    version->setObjectName(QStringLiteral("lblVer"));
    heading->addWidget(version, 0, Qt::AlignBottom);
    column->addLayout(heading);
    m_lbl->setObjectName(QStringLiteral("lbl"));
    m_lbl->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    m_lbl->setAlignment(Qt::AlignLeft | Qt::AlignBottom);
    column->addWidget(m_lbl, 1);
    ClearStatus();
    // Room for the thirteen lines, whatever the font.
    m_lbl->setMinimumHeight(m_lbl->fontMetrics().lineSpacing() * kLines + 4);
    setFixedWidth(440);
    adjustSize();
    if (const QScreen* screen = QGuiApplication::primaryScreen())
        move(screen->availableGeometry().center() - rect().center());
}

void SplashWindow::Status(const QString& text) {
    m_status.removeFirst();
    // The steps' texts double an ampersand as a menu caption would.
    m_status.append(QString(text).replace(QStringLiteral("&&"), QStringLiteral("&")));
    m_lbl->setText(m_status.join(u'\n'));
    if (!isVisible()) return;
    // The start runs before the event loop: paint now, so that each step
    // shows while it runs.
    m_lbl->repaint();
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}

void SplashWindow::ClearStatus() {
    m_status = QStringList(kLines, QString());
    m_lbl->setText(m_status.join(u'\n'));
}
