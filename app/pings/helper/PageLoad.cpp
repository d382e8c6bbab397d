#include "app/pings/helper/PageLoad.h"

#include <QWebEngineSettings>
#include <chrono>

using namespace std::chrono_literals;

namespace {

/// How long a loaded page must have asked for nothing before it counts as settled, and how long it
/// may go on asking.
constexpr auto kQuiet = 1s;
constexpr auto kPatience = 5s;

} // namespace

PageLoad::PageLoad()
    : m_watcher([this] {
          if (m_quiet.isActive())
              m_quiet.start();
      }),
      m_page(&m_profile)
{
    m_profile.setUrlRequestInterceptor(&m_watcher);
    m_page.setAudioMuted(true);
    QWebEngineSettings &settings = *m_page.settings();
    settings.setAttribute(QWebEngineSettings::JavascriptEnabled, true);
    settings.setAttribute(QWebEngineSettings::JavascriptCanOpenWindows, false);
    settings.setAttribute(QWebEngineSettings::ErrorPageEnabled, false);
    settings.setAttribute(QWebEngineSettings::AutoLoadIconsForPage, false);

    m_quiet.setSingleShot(true);
    m_quiet.setInterval(kQuiet);
    m_patience.setSingleShot(true);
    m_patience.setInterval(kPatience);
    for (const QTimer *timer : {&m_quiet, &m_patience})
        connect(timer, &QTimer::timeout, this, [this] { Q_EMIT finished(m_wasLoaded); });
    connect(&m_page, &QWebEnginePage::loadFinished, this, &PageLoad::settle);
}

void PageLoad::load(const QUrl &url)
{
    m_page.load(url);
    // To its scripts, a hidden page counts as unseen and has its timers slowed down. Only a page
    // that is being loaded can be made visible.
    m_page.setVisible(true);
}

/// A page that leads on to another one finishes more than once; the last one counts.
void PageLoad::settle(bool wasLoaded)
{
    m_wasLoaded = wasLoaded;
    m_quiet.start();
    if (!m_patience.isActive())
        m_patience.start();
}
