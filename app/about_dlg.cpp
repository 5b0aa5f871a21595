#include "app/about_dlg.h"

#include "app/version.h"
#include "res/resource_ids.h"
#include "res/resources.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

namespace marvolen {

CAboutDlg::CAboutDlg(QWidget* parent) : CDialog(parent) {
    setWindowTitle(QStringLiteral("About Marvolen"));

    auto* icon = new QLabel(this);
    icon->setPixmap(LoadImage(IDR_MAIN_ICON, QSize(64, 64), devicePixelRatioF()));

    auto* name = new QLabel(QStringLiteral("<b>Marvolen</b>"), this);
    auto* version = new QLabel(
        QStringLiteral("Version %1, %2").arg(QLatin1String(kVersion), QLatin1String(kVersionDate)),
        this);
    auto* purpose =
        new QLabel(QStringLiteral("Watches and records sixteen networked cameras."), this);

    auto* closeButton = new QPushButton(QStringLiteral("Close"), this);
    closeButton->setDefault(true);
    AddControl(closeButton, IDOK, QStringLiteral("Close"));
    connect(closeButton, &QPushButton::clicked, this, &QDialog::accept);

    auto* texts = new QVBoxLayout;
    texts->setSpacing(4);
    texts->addWidget(name);
    texts->addWidget(version);
    texts->addWidget(purpose);
    texts->addStretch();
    auto* top = new QHBoxLayout;
    top->setSpacing(16);
    top->addWidget(icon, 0, Qt::AlignTop);
    top->addLayout(texts);
    auto* bottom = new QHBoxLayout;
    bottom->addStretch();
    bottom->addWidget(closeButton);
    auto* all = new QVBoxLayout(this);
    all->setContentsMargins(16, 16, 16, 12);
    all->setSpacing(12);
    all->addLayout(top);
    all->addLayout(bottom);
    all->setSizeConstraint(QLayout::SetFixedSize);
}

}  // namespace marvolen
