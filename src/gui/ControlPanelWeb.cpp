#include "gui/ControlPanelWeb.h"

#include "config/SettingsWrapper.h"
#include "control/WebToken.h"

#include <QApplication>
#include <QClipboard>
#include <QDesktopServices>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QHostAddress>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QSpinBox>
#include <QUrl>

namespace {

void warn(QWidget* parent, const QString& text) {
    auto* box = new QMessageBox(QMessageBox::Warning, QStringLiteral("Not saved"), text,
                                QMessageBox::Ok, parent);
    box->setObjectName(QStringLiteral("msgNotSaved"));
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
}

} // namespace

ControlPanelWeb::ControlPanelWeb(QWidget* parent)
    : SettingsPanelPage(QStringLiteral("Web page settings:"), parent) {
    auto* form = new QFormLayout;
    auto* port = new QSpinBox;
    port->setObjectName(QStringLiteral("h3hPort"));
    port->setRange(0, 65535);
    port->setSpecialValueText(QStringLiteral("Off"));
    form->addRow(QStringLiteral("Port:"), port);
    auto* address = new QLineEdit;
    address->setObjectName(QStringLiteral("h3hAddress"));
    form->addRow(QStringLiteral("Listen on:"), address);

    auto* tokenLine = new QHBoxLayout;
    auto* token = new QLineEdit;
    token->setObjectName(QStringLiteral("h3hToken"));
    token->setReadOnly(true);
    token->setEchoMode(QLineEdit::Password);
    auto* copy = new QPushButton(QStringLiteral("Copy"));
    copy->setObjectName(QStringLiteral("h3hCopy"));
    tokenLine->addWidget(token);
    tokenLine->addWidget(copy);
    form->addRow(QStringLiteral("Token:"), tokenLine);
    body()->addLayout(form);

    auto* openPage = new QPushButton(QStringLiteral("Open in browser"));
    openPage->setObjectName(QStringLiteral("h3hOpen"));
    body()->addWidget(openPage);
    addNote(QStringLiteral(
        "The page shows every profile's channel and takes lines and connect, disconnect, load "
        "and unload from a browser that offers the token. It listens on this machine only "
        "unless another address is given; from elsewhere, reach it through an SSH tunnel or a "
        "reverse proxy with TLS. A change takes effect when saved."));
    body()->addStretch(1);

    connect(copy, &QPushButton::clicked, this,
            [token] { QApplication::clipboard()->setText(token->text()); });
    // The page where it listens; an address of every interface is reached here
    // through the loopback one.
    connect(openPage, &QPushButton::clicked, this, [port, address] {
        QHostAddress host(address->text().trimmed());
        if (host.isNull() || host == QHostAddress::AnyIPv4) host = QHostAddress::LocalHost;
        if (host == QHostAddress::AnyIPv6) host = QHostAddress::LocalHostIPv6;
        QUrl page;
        page.setScheme(QStringLiteral("http"));
        page.setHost(host.toString());
        page.setPort(port->value());
        page.setPath(QStringLiteral("/"));
        if (port->value() > 0) QDesktopServices::openUrl(page);
    });

    SettingsWrapper& settings = SettingsWrapper::instance();
    bind(
        [&settings, port, address, token, openPage] {
            port->setValue(std::clamp(settings.WebPort(), 0, 65535));
            address->setText(settings.WebAddress());
            QString error;
            const QString made = WebToken::Ensure(&error);
            token->setText(made);
            token->setPlaceholderText(error);
            openPage->setEnabled(port->value() > 0);
        },
        [this, &settings, port, address, openPage] {
            const QString where = address->text().trimmed();
            if (!where.isEmpty() && QHostAddress(where).isNull()) {
                warn(this, QStringLiteral("'%1' is not an address (such as 127.0.0.1 or ::1).")
                               .arg(where));
                return false;
            }
            // Each change moves the page, closing the pages open now.
            bool saved = true;
            if (where != settings.WebAddress()) saved = settings.setWebAddress(where);
            if (port->value() != settings.WebPort()) saved = settings.setWebPort(port->value()) && saved;
            openPage->setEnabled(port->value() > 0);
            return saved;
        });
}
