#include "app/pages/FinalViewController.h"

#include "app/navigation/PageViews.h"
#include "app/pings/StatsUpdater.h"
#include "app/settings/SettingsKeys.h"
#include "app/settings/UserDefaults.h"
#include "chart/PieChart.h"
#include "platform/base/ByteCount.h"
#include "platform/base/Log.h"
#include "platform/desktop/InterfaceLoader.h"
#include "platform/look/Fonts.h"
#include "platform/look/ViewAlpha.h"
#include "platform/sheet/Alert.h"
#include "slices/record/Info.h"
#include "widgets/StartButton.h"
#include "widgets/TextField.h"

#include <QUrl>
#include <algorithm>

namespace {

// The first and the last slice are the pie's invisible part; the links lie between them.
constexpr int kNumberOfSlices = 5;
constexpr double kInvisibleValue = 2.0;
constexpr double kLinkValue = 1.0;
constexpr double kLabelRadius = 120.0;
constexpr std::chrono::seconds kSizeEntrance{3};

bool isLink(int index)
{
    return index > 0 && index < kNumberOfSlices - 1;
}

std::shared_ptr<Info> linkRecord(const QString &image)
{
    return std::make_shared<Info>(QString(), std::nullopt, image, std::nullopt);
}

} // namespace

FinalViewController::FinalViewController(const InterfaceLoader &loader, Services services,
                                         QObject *parent)
    : VNTViewController(loader, parent),
      m_services(std::move(services)),
      m_labelController(nullptr, m_services.readVolume)
{
}

void FinalViewController::viewDidLoad()
{
    connectOutlets();
    connect(m_scanAgainButton, &StartButton::triggered, this, &FinalViewController::scanAgain);
    setAlphaValue(*m_sizeLabel, 0);
    buildSlices();
    m_pieChart->setInfoRadius(kLabelRadius);
    m_pieChart->setDataSource(this);
    m_pieChart->setDelegate(this);
}

void FinalViewController::connectOutlets()
{
    m_pieChart = outlet<PieChart>(*view(), "pieChart");
    m_scanAgainButton = outlet<StartButton>(*view(), "scanAgainButton");
    m_sizeLabel = outlet<TextField>(*view(), "sizeLabel");
    connectSizeLabels(m_labelController, *view());
    constexpr int kSizeLabelPoints = 64;
    m_sizeLabel->setFont(interfaceFont(Typeface::UltraLight, kSizeLabelPoints));
    m_scanAgainButton->mainText().setText(tr("Scan Again"));
}

void FinalViewController::buildSlices()
{
    const std::shared_ptr<Info> invisible = Info::infoWithName(QString(), std::nullopt);
    m_infoArray = {invisible, linkRecord(QStringLiteral("socialFacebook")),
                   linkRecord(QStringLiteral("socialTwitter")),
                   linkRecord(QStringLiteral("socialAppStoreLink")), invisible};
    m_colors = {Qt::transparent, QColor(66, 96, 166), QColor(91, 194, 230), QColor(64, 145, 190),
                Qt::transparent};
}

void FinalViewController::viewWillAppear(bool)
{
    m_labelController.reloadData();
    m_scanAgainButton->setEnabled(false);
}

void FinalViewController::viewDidAppear(bool)
{
    const qint64 freed = data().toLongLong();
    const QString sizeText = stringFromByteCount(freed);
    addToTotal(freed);
    m_sizeLabel->setText(sizeText);
    animateAlphaValue(*m_sizeLabel, 1, kSizeEntrance);
    m_pieChart->reloadData();
    m_pieChart->setDrawShadow(false);
    m_scanAgainButton->setEnabled(true);
    m_scanAgainButton->setFocus(Qt::OtherFocusReason); // Return goes on
    m_services.stats.updateStatsForURLString(m_services.addresses.cleaningPing);
}

void FinalViewController::addToTotal(qint64 freed)
{
    // A total edited by hand may be anything.
    const qint64 before = std::max<qint64>(m_services.defaults.integer(VNTTotalCleanedSize), 0);
    const qint64 total = sumOfByteCounts(before, freed);
    m_services.defaults.setInteger(VNTTotalCleanedSize, total);
    qCInfo(logVantor).noquote() << QStringLiteral("New total size saved: %1").arg(total);
}

void FinalViewController::viewWillDisappear(bool)
{
    m_scanAgainButton->setEnabled(false);
    m_pieChart->animateOut();
}

void FinalViewController::scanAgain()
{
    goBack();
}

int FinalViewController::numberOfSlicesInPieChart(PieChart &)
{
    return kNumberOfSlices;
}

double FinalViewController::valueForSliceAtIndex(PieChart &, int index)
{
    return isLink(index) ? kLinkValue : kInvisibleValue;
}

std::optional<QColor> FinalViewController::colorForSliceAtIndex(PieChart &, int index)
{
    return m_colors.at(index);
}

std::shared_ptr<Info> FinalViewController::infoForSliceAtIndex(PieChart &, int index)
{
    return m_infoArray.at(index);
}

std::optional<QString> FinalViewController::accessibleNameForSliceAtIndex(PieChart &, int index)
{
    const QStringList names{QString(), tr("Our Facebook page"), tr("Our Twitter page"),
                            tr("Our home page"), QString()};
    return names.value(index);
}

bool FinalViewController::canSelectSliceAtIndex(PieChart &, int index)
{
    return isLink(index);
}

QString FinalViewController::addressOfSlice(int index) const
{
    const Addresses &addresses = m_services.addresses;
    return QStringList{QString(), addresses.facebook, addresses.twitter, addresses.homePage}.value(
        index);
}

void FinalViewController::didSelectSliceAtIndex(PieChart &, int index)
{
    const QString address = addressOfSlice(index);
    if (address.isEmpty() || m_services.openUrl(QUrl(address)))
        return;
    // No browser could be started: the user can still copy the address.
    presentAlert(*view(), {.style = AlertStyle::Informational,
                           .messageText = tr("The page could not be opened."),
                           .informativeText = address});
}
