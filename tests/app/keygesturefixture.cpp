#include "keygesturefixture.h"

#include "libmodel/actions/actionmanager.h"
#include "support/glfixture.h"

#include <QTest>

using Model::Tool;

void KeyGestureFixture::initTestCase()
{
    QVERIFY(TestSupport::startRenderer());
    m_store = std::make_unique<IsolatedStore>();
    Model::ActionManager::instance()->createActions();
    m_stage = std::make_unique<KeyStage>();
    QVERIFY(m_stage->window.isActiveWindow());
}

void KeyGestureFixture::init()
{
    m_stage->reset();
}

/// Whatever a test did: nothing is stuck.
void KeyGestureFixture::cleanup()
{
    QVERIFY(!m_stage->paper->isDevicePressed());
    QVERIFY(!m_stage->scrubbing->isRunning());
    QVERIFY(!m_stage->playback->isActive());
    QCOMPARE(m_stage->scene()->scrubFrame(), -1);
    QVERIFY(!m_stage->scene()->hasActiveStroke());
    m_stage->reset();
    // Nothing comes to light that was held under another tool.
    for (const Tool::Type type : {Tool::Type::ZPR, Tool::Type::Hand, Tool::Type::Zoom, Tool::Type::Rotate,
                                  Tool::Type::OffPegs, Tool::Type::Scrubbing}) {
        m_stage->toolSwitch->releaseTool(type);
        QCOMPARE(KeyStage::tool(), Tool::Type::Pen);
    }
}

void KeyGestureFixture::cleanupTestCase()
{
    m_stage.reset();
}
