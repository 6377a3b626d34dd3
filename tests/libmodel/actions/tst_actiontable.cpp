#include "libmodel/actions/actiontable.h"

#include "libmodel/actions/actionmanager.h"
#include "support/isolatedstore.h"

#include <QAction>
#include <QGuiApplication>
#include <QLocale>
#include <QMetaEnum>
#include <QTest>
#include <QTranslator>
#include <QUndoStack>

#include <map>

using namespace Model;

namespace {

// Every action: value, key, text, shortcuts, stem of the icon, flags (c checkable, r does not repeat, d starts
// disabled, x starts checked or as its setting is).
constexpr const char *catalogue = R"(
1|NewScene|New Scene...|Ctrl+N||
2|OpenScene|Open Scene...|Ctrl+O||
3|SaveScene|Save Scene|Ctrl+S||
4|SaveSceneAs|Save Scene As...|Ctrl+Shift+S||
5|AutoSave|Enable Autosaving|||cr
6|Import|Import (Frames, Movie Clip or Audio)...|Ctrl+I||
7|ExportFrames|Frames...|||
8|ExportExposureSheet|OCA (Open Cel Animation)...|||
9|ExportVideo|Movie Clip...|||
10|SceneSettings|Scene Settings...|Ctrl+Shift+I||
11|Quit|&Quit|Ctrl+Q||
12|Undo|&Undo|Ctrl+Z|Undo|
13|Redo|&Redo|Ctrl+Shift+Z|Redo|
14|AddCloneDrawing|Add Clone Drawing|'|AddCloneDrawing|
15|DeleteCloneDrawing|Delete Clone Drawing|Ctrl+'||
16|AddBlankDrawing|Add Blank Drawing|Ctrl+Down|AddBlankDrawing|
17|InsertBlankDrawing|Insert Blank Drawing|Ctrl+Up|InsertBlankDrawing|
18|TurnCloneIntoOriginal|Turn Clone into Original|O|TurnCloneToNewOriginal|
19|CutDrawing|Cut Drawing|Ctrl+X||
20|CopyDrawing|Copy Drawing|Ctrl+C||
21|PasteDrawing|Paste Drawing|Ctrl+V||d
22|ClearDrawingMakingBlank|Clear Drawing (Make it Blank)|*|ClearDrawingMakingBlank|
23|LoseDrawingMakingHold|Lose Drawing (Keep Timing)|/|LoseDrawingMakingClone|
24|DiscardDrawing|Delete Drawing|Ctrl+Delete|DiscardDrawing|
25|BackDeleteDrawing|Back-delete Drawing|Ctrl+Backspace|BackDeleteDrawing|
26|SelectAllDrawings|Select All Drawings|Ctrl+A||
27|CloneEachSelectedDrawingOnce|Clone Each Selected Drawing Once|||d
28|CycleSelectedDrawingsOnce|Cycle Selected Drawings Once|@||d
29|Draw|&Draw (Latest Drawing Tool)|D|Draw|cr
30|Erase|&Erase (Latest Erasing Tool)|E|Erase|cr
31|NonDrawingAction|Dummy non-drawing action|||c
32|DrawEraseToggle|Draw/Erase Toggle|.|DrawEraseToggle|r
33|Pencil|Pencil (P)|4 P|Pencil|cr
34|PencilPreset1|Pencil Preset 1||Pencil_Preset1|r
35|PencilPreset2|Pencil Preset 2||Pencil_Preset2|r
36|PencilPreset3|Pencil Preset 3||Pencil_Preset3|r
37|Marker|Marker (M)|5 M|Marker|cr
38|MarkerPreset1|Marker Preset 1||Marker_Preset1|r
39|MarkerPreset2|Marker Preset 2||Marker_Preset2|r
40|MarkerPreset3|Marker Preset 3||Marker_Preset3|r
41|Brush|Brush (B)|6 B|Brush|cr
42|BrushPreset1|Brush Preset 1||Brush_Preset1|r
43|BrushPreset2|Brush Preset 2||Brush_Preset2|r
44|BrushPreset3|Brush Preset 3||Brush_Preset3|r
45|KneadedEraser|Kneaded Eraser|1|KneadedEraser|cr
46|RubberEraser|Rubber Eraser|2|RubberEraser|cr
47|VinylEraser|Vinyl Eraser|3|VinylEraser|cr
48|ResetDrawingUserSettings|Reset User Settings|Ctrl+Shift+D||
49|ResetErasingUserSettings|Reset User Settings|Ctrl+Shift+E||
50|DecreasePenSize|Decrease Pen Size|[||
51|IncreasePenSize|Increase Pen Size|]||
52|DrawSettings|Draw Settings (Hold D Key)|Shift+D||r
53|EraseSettings|Erase Settings (Hold E Key)|Shift+E||r
54|ToggleCursor|Toggle Cursor (Crosshair/Dot)|,||
55|Play|Play|Space|Playback|r
56|PlayLoop|Loop|||c
57|PlayOnce|Once|||c
58|PlayBackwards|Backwards|||c
59|PlayStopAndStay|Stop and Stay|||c
60|FrameRate06|6|||c
61|FrameRate12|12|||c
62|FrameRate12_5|12.5|||c
63|FrameRate15|15|||c
64|FrameRate24|24|||c
65|FrameRate25|25|||c
66|FrameRate30|30|||c
67|FrameRate50|50|||c
68|FrameRate60|60|||c
69|FrameRateCustom|Custom|||c
70|StepBack|Step Back|Left Alt+Q||
71|StepForward|Step Forward|Right Alt+W||
72|StepBackSkippingLocalClones|Step Back (Skipping Local Clones)|Up||
73|StepForwardSkippingLocalClones|Step Forward (Skipping Local Clones)|Down||
74|SkipBackToKeyDrawing|Skip Back to Key Drawing|Shift+Up||
75|SkipForwardToKeyDrawing|Skip Forward to Key Drawing|Shift+Down||
76|ReturnFlip|Return Flip (Hold Return Key)|Return||r
77|JumpToStart|Jump to Start|Home|JumpToStart|
78|JumpToEnd|Jump to End|End|JumpToEnd|
79|RangeStartStepBack|Step Range-Start Back|Ctrl+Left||
80|RangeStartStepForward|Step Range-Start Forward|Ctrl+Right||
81|RangeEndStepBack|Step Range-End Back|Ctrl+Shift+Left||
82|RangeEndStepForward|Step Range-End Forward|Ctrl+Shift+Right||
83|RangeStartToFirstFrame|Reset Range-Start to First Frame|Ctrl+Home||
84|RangeEndToLastFrame|Reset Range-End to Last Frame|Ctrl+End||
85|MuteAudio|Mute Audio||Audio|c
86|DiscardAudio|Discard Audio|||
87|BacklightOnOff|Backlight (Onion Skin) On/Off|Shift+Space|BacklightOnOff|cx
89|CustomizeBacklight|Customize Backlight...|Ctrl+Shift+Space||
90|Pan|&Hand Tool|H|HandTool|cr
91|Zoom|&Zoom|Z|Zoom|cr
92|Rotate|&Rotate|R|Rotate|cr
93|ZPR|Hand/Zoom/Rotate (Hold Space Bar)|Space||r
94|ResetView|Reset View (0°, 100%, Centered)|0|ResetView|
95|FitPaperToView|Fit View (?%)|Ctrl+0|FitView|
96|ZoomIn|Zoom In|Ctrl+= Ctrl++||
97|ZoomOut|Zoom Out|Ctrl+-||
98|ViewToX1|X1 (100%)|Ctrl+1||
99|GridOnOff|Grid On/Off|G|Grid|cr
100|GridTypeFieldGuide|Field Guide|||cr
101|GridTypeSafety|Safety|||cr
102|GridTypeThirds|Thirds|||cr
103|GridTypeDiagonals|Diagonals|||cr
104|GridTypeRenaissance|Renaissance|||cr
105|GridTypeNext|Next Grid Type|Shift+G||
106|MarkAsKeyDrawing|Mark (or Unmark) as Key Drawing|K|MarkAsKeyDrawing|
107|UnmarkAllKeyDrawings|Unmark All (Clear Keys)|Shift+K|ClearKeys|
108|OnlyBacklightKeyFrames|Only Backlight Key Frames|Ctrl+K|BacklightKeys|cx
109|MirrorView|Mirror View|Y|Mirror|c
110|OffPegs|Off Pegs Tool (Hold %1 and %2 Keys)||OffPegs|cr
111|XSheetShow|Show X-Sheet|Tab||c
112|XSheetOppositeSide|Place X-Sheet at Opposite Side|||
113|XSheetDetachSeparateWindow|Detach X-Sheet as Separate Window|Shift+Tab||c
114|XSheetCenterAndScroll|Center and Scroll when Flipping|||cx
115|SlideMode|Slide Mode||SlideMode|cx
116|AddClonesMode|Add Clones Mode||AddClonesMode|cx
117|ToggleXSheetDragMode|Toggle Mode (Add Clones/Slide)|T|ToggleMode|
118|NewLayer|New Layer|N|NewLayer|
119|DuplicateActiveLayer|Duplicate Layer|Ctrl+D|DuplicateLayer|
120|LayerAbove|Go to Layer Above|PgUp||
121|LayerBelow|Go to Layer Below|PgDown||
122|LayerTop|Go to Top Layer|Shift+PgUp||
123|LayerBottom|Go to Bottom Layer|Shift+PgDown||
124|DiscardActiveLayer|Delete Layer|Ctrl+Shift+Delete|DeleteLayer|
125|LayerVisibility|Layer Visible|V|Visible|cx
126|LayerLink|Layer Linked|-|Link|cx
127|ShowNothingBeyond|Nothing|||cx
128|FreezeLastDrawingBeyond|Freeze Last Drawing|||c
129|CycleDrawingsBeyond|Cycle Drawings|||c
130|ShowBeyondButtons|Show Buttons|||cx
131|MergeLayerDown|Merge Layer Down (Right)|&|MergeLayers|
132|UnlinkAllLayers|Unlink All Layers|U||
133|LinkAllLayers|Link All Layers|Shift+U||
134|ThumbnailSizeTiny|Tiny|||c
135|ThumbnailSizeSmall|Small|||c
136|ThumbnailSizeMedium|Medium|||cx
137|ThumbnailSizeLarge|Large|||c
138|ThumbnailSizeSmaller|Smaller|Ctrl+<||
139|ThumbnailSizeLarger|Larger|Ctrl+>||
140|Lasso|Lasso|L|LassoThisDrawing|cr
141|Cutter|Cutter|X|Cutter|cr
142|PickUpAllOfThisDrawing|All (Whole Drawing)|A|PickUpAll|r
143|StampFloatingSelection|Stamp Floating Selection|Return||r
144|StampFloatingSelectionKeepFloating|Stamp Floating Selection (Keep Floating Selection)|Shift+Return Shift+Enter||r
145|DropFloatingSelection|Drop Floating Selection|Esc||
146|GetLatestFloatingSelectionBack|Get latest Floating Selection back|Shift+Esc||
147|FloatingSelection|Floating Selection|||cr
148|NewPaintLayer|New Paint Layer|||d
149|NewPaintLayerWithCloneStructure|New Paint Layer with Clone Structure|Ctrl+Shift+N||d
150|Palette|&Color Palette|C|Palette|rd
151|ColorPickerTool|Color Picker Tool|I|ColorPickerTool|d
152|FillTool|Fill Tool|F|FillTool|d
153|ToolBar|Show Tool Bar|Ctrl+T||c
154|ToolBarOppositeSide|Place Tool Bar at Opposite Side|||
155|ReferenceDisplay|Reference Display|#||c
156|CustomizeToolBar|Customize Tool Bar...|||
157|PrimarySpeedDial|&Speed Dial (primary)|S||r
158|SecondarySpeedDial|Speed Dial (secondary)|Shift+S||r
159|CustomizeSpeedDials|Customize Speed Dials...|||
160|FullScreen|Enter Full Screen|F11||d
161|Settings|Settings...|||
162|VideoTutorials|Video Tutorials|F1||
163|KeyboardShortcuts|Keyboard Shortcuts|||
164|CommunityForum|Community Forum|||
165|ProvideFeedback|Provide Feedback|||
166|About|About %1|||
167|ImportReferenceLayer|Import Reference Frames or Movie Clip...|||
168|ImportAudio|Import Audio...|||
169|CollapseVectorData|Collapse vector data to bitmap|Ctrl+B||d
170|FaintCursor|Faint Cursor|||cx
171|FreelyDrawOnClones|Freely draw on Clones - Original will update|||c
172|ClonesLockedForDrawing|Clones are locked for drawing|||c
173|TransparencyShownAsSmallCheckersLight|Small Checkers, Light|||cr
174|TransparencyShownAsSmallCheckersDark|Small Checkers, Dark|||cr
175|TransparencyShownAsLargeCheckersLight|Large Checkers, Light|||cr
176|TransparencyShownAsLargeCheckersDark|Large Checkers, Dark|||cr
177|TransparencyShownAsWhite|White|||cr
178|TransparencyShownAsLightGrey|Light Grey|||cr
179|TransparencyShownAsDarkGrey|Dark Grey|||cr
180|TransparencyShownAsBlack|Black|||cr
181|CollapseVectorDataAutomatically|Collapse Automatically|||c
182|XSheetLeftSide|Left Side|||cr
183|XSheetRightSide|Right Side|||cr
184|XSheetTopBar|Show X-Sheet Top Bar|||cx
185|AutoSaveInterval5Min|5 mins|||cr
186|AutoSaveInterval15Min|15 mins|||cr
187|AutoSaveInterval30Min|30 mins|||cr
188|AutoSaveInterval60Min|1 hour|||cr
189|AutoSaveFiles1|Only 1|||cr
190|AutoSaveFiles2|Alternate between 2|||cr
191|AutoSaveFiles3|Cycle through 3|||cr
192|AutoSaveFiles5|Cycle through 5|||cr
193|AutoSaveFiles9|Cycle through 9|||cr
194|UIScale75|75%|||cr
195|UIScale100|100%|||cr
196|UIScale125|125%|||cr
197|UIScale150|150%|||cr
)";

/// The parts of a line of the list.
struct Line
{
    explicit Line(const QString &line) : parts(line.split(QLatin1Char('|'))) {}

    [[nodiscard]] int value() const { return parts[0].toInt(); }
    [[nodiscard]] MR::Action action() const { return static_cast<MR::Action>(value()); }
    /// In the one writing that QKeySequence gives back.
    [[nodiscard]] QStringList shortcuts() const
    {
        QStringList texts;
        for (const QString &text : parts[3].split(QLatin1Char(' '), Qt::SkipEmptyParts))
            texts << QKeySequence(text, QKeySequence::PortableText).toString(QKeySequence::PortableText);
        return texts;
    }

    QStringList parts;
};

QList<Line> lines()
{
    QList<Line> all;
    for (const QString &line : QString::fromUtf8(catalogue).split(QLatin1Char('\n'), Qt::SkipEmptyParts))
        all << Line(line);
    return all;
}

QString keyOf(MR::Action action)
{
    return QString::fromLatin1(QMetaEnum::fromType<MR::Action>().valueToKey(static_cast<int>(action)));
}

QStringList portable(const QList<QKeySequence> &shortcuts)
{
    QStringList texts;
    for (const QKeySequence &shortcut : shortcuts)
        texts << shortcut.toString(QKeySequence::PortableText);
    return texts;
}

QString flagsOf(const QAction &action)
{
    QString flags;
    if (action.isCheckable())
        flags += QLatin1Char('c');
    if (!action.autoRepeat())
        flags += QLatin1Char('r');
    // What is hidden says that it is disabled.
    if (!action.isEnabled() && action.isVisible())
        flags += QLatin1Char('d');
    return flags;
}

/// Knows the names of keys as Qt asks for them, and nothing else.
class KeyTranslator : public QTranslator
{
public:
    QString translate(const char *context, const char *source, const char *, int) const override
    {
        if (qstrcmp(context, "QShortcut") != 0)
            return {};
        if (qstrcmp(source, "Alt") == 0)
            return QStringLiteral("Umschalt");
        return qstrcmp(source, "Ctrl") == 0 ? QStringLiteral("Strg") : QString();
    }
    [[nodiscard]] bool isEmpty() const override { return false; }
};

} // namespace

class tst_ActionTable : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void everyValueButTheTwoHolesHasExactlyOneRow();
    void rowsAreInTheOrderOfTheirValues();
    void actionsAreAsListed_data();
    void actionsAreAsListed();
    void shortcutsAreSharedOnlyWhereKeysAreChosenBetween();
    void startsWithTheseChecked();

    void secondFacesAreAsListed_data();
    void secondFacesAreAsListed();
    void noOtherActionHasASecondFace();

    void modifiersAreNamedAsShortcutsNameThem();
    void frameRateIsWrittenAsTheLocaleDoes();
    void frameRatesStandInTheirRows();
    void gridTypesHaveNoShortcut();
    void storedListsFindTheirActionsByKey_data();
    void storedListsFindTheirActionsByKey();
    void usualShortcutDoesNotAskThePlatform();

private:
    IsolatedStore m_store;
};

void tst_ActionTable::initTestCase()
{
    QGuiApplication::setApplicationDisplayName(QStringLiteral("Testprogram"));
    ActionManager *manager = ActionManager::instance();
    manager->createActions();
    // Whoever owns the undo stack makes these two.
    static QUndoStack stack;
    manager->insertUndoActions(stack.createUndoAction(manager, QStringLiteral("&Undo")),
                               stack.createRedoAction(manager, QStringLiteral("&Redo")));
}

void tst_ActionTable::everyValueButTheTwoHolesHasExactlyOneRow()
{
    std::map<int, int> rows;
    for (const ActionRow &row : actionTable())
        ++rows[static_cast<int>(row.action)];
    for (int value = 0; value <= 197; ++value) {
        const bool hole = value == 0 || value == 88;
        QVERIFY2(rows[value] == (hole ? 0 : 1), qPrintable(QString::number(value)));
    }
    QCOMPARE(actionTable().size(), std::size_t(196));
    QCOMPARE(actionRow(MR::Action::NoAction), nullptr);
    QCOMPARE(actionRow(MR::Action::Toggle1Or3Drawings), nullptr);
}

void tst_ActionTable::rowsAreInTheOrderOfTheirValues()
{
    QVERIFY(std::ranges::is_sorted(actionTable(), {}, &ActionRow::action));
    QCOMPARE(lines().size(), 196);
}

void tst_ActionTable::actionsAreAsListed_data()
{
    QTest::addColumn<QString>("text");
    for (const Line &line : lines())
        QTest::newRow(qPrintable(line.parts[1])) << line.parts.join(QLatin1Char('|'));
}

void tst_ActionTable::actionsAreAsListed()
{
    QFETCH(QString, text);
    const Line line(text);
    QCOMPARE(line.parts.size(), 6);
    const ActionRow *row = actionRow(line.action());
    const QAction *action = ActionManager::instance()->action(line.action());
    QVERIFY(row && action);
    QCOMPARE(keyOf(line.action()), line.parts[1]);
    QCOMPARE(action->property("MRActionName").toString(), line.parts[1]);
    QCOMPARE(QString::fromLatin1(row->iconStem), line.parts[4]);
    QCOMPARE(bool(row->flags & ActionRow::Checked), line.parts[5].contains(QLatin1Char('x')));
    if (line.action() == MR::Action::Undo || line.action() == MR::Action::Redo) {
        // The stack moves text and state of these with what it holds.
        QCOMPARE(QString::fromLatin1(row->text), line.parts[2]);
    } else {
        const QString shown =
            QString(line.parts[2]).replace(QLatin1String("About %1"), QLatin1String("About Testprogram"));
        QCOMPARE(action->text(), shown.contains(QLatin1String("%2")) ? shown.arg("Alt", "Ctrl") : shown);
        QCOMPARE(flagsOf(*action), QString(line.parts[5]).remove(QLatin1Char('x')));
    }
    QCOMPARE(portable(action->shortcuts()), line.shortcuts());
}

void tst_ActionTable::shortcutsAreSharedOnlyWhereKeysAreChosenBetween()
{
    std::map<QString, QStringList> owners;
    for (const QAction *action : ActionManager::instance()->actions()) {
        for (const QString &shortcut : portable(action->shortcuts()))
            owners[shortcut] << action->property("MRActionName").toString();
    }
    std::map<QString, QStringList> shared;
    for (const auto &[shortcut, names] : owners) {
        if (names.size() > 1)
            shared[shortcut] = names;
    }
    const std::map<QString, QStringList> meant{{"Return", {"ReturnFlip", "StampFloatingSelection"}},
                                               {"Space", {"Play", "ZPR"}}};
    QCOMPARE(shared, meant);
}

void tst_ActionTable::startsWithTheseChecked()
{
    // With the settings at their defaults.
    const QStringList expected{"BacklightOnOff",
                               "GridTypeFieldGuide",
                               "OnlyBacklightKeyFrames",
                               "XSheetCenterAndScroll",
                               "AddClonesMode",
                               "LayerVisibility",
                               "LayerLink",
                               "ShowNothingBeyond",
                               "ThumbnailSizeMedium",
                               "FaintCursor",
                               "FreelyDrawOnClones",
                               "TransparencyShownAsWhite",
                               "AutoSaveInterval15Min",
                               "AutoSaveFiles3",
                               "UIScale100"};
    QStringList checked;
    for (const QAction *action : ActionManager::instance()->actions()) {
        if (action->isChecked())
            checked << action->property("MRActionName").toString();
    }
    QCOMPARE(checked, expected);
}

void tst_ActionTable::secondFacesAreAsListed_data()
{
    QTest::addColumn<MR::Action>("action");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("iconStem");
    using enum MR::Action;
    const auto row = [](MR::Action action, const char *text, const char *iconStem = "") {
        QTest::newRow(qPrintable(keyOf(action)))
            << action << QString::fromLatin1(text) << QString::fromLatin1(iconStem);
    };
    row(AddCloneDrawing, "Add Clone after each Selected Drawing");
    row(DeleteCloneDrawing, "Delete All Selected Clone Drawings");
    row(AddBlankDrawing, "Add Blank after each Selected Drawing");
    row(InsertBlankDrawing, "Insert Blank before each Selected Drawing");
    row(TurnCloneIntoOriginal, "Turn Selected Clones into Originals");
    row(CutDrawing, "Cut Selected Drawings");
    row(CopyDrawing, "Copy Selected Drawings");
    row(PasteDrawing, "Paste Drawings");
    row(ClearDrawingMakingBlank, "Clear Selected Drawings (Make them Blank)");
    row(LoseDrawingMakingHold, "Lose Selected Drawings (Keep Timing)");
    row(DiscardDrawing, "Delete Selected Drawings");
    row(BackDeleteDrawing, "Back-delete Selected Drawings");
    row(Play, "Stop", "Stop");
}

void tst_ActionTable::secondFacesAreAsListed()
{
    QFETCH(MR::Action, action);
    QFETCH(QString, text);
    ActionManager *manager = ActionManager::instance();
    const QAction *shown = manager->action(action);
    const QString ordinary = shown->text();
    manager->setActionFace(action, 1, 2);
    QCOMPARE(shown->text(), text);
    QVERIFY2(shown->toolTip().startsWith(text), qPrintable(shown->toolTip()));
    manager->setActionFace(action, 0, 1);
    QCOMPARE(shown->text(), ordinary);
    QVERIFY(secondFace(action));
    QTEST(QString::fromLatin1(secondFace(action)->iconStem), "iconStem");
}

void tst_ActionTable::noOtherActionHasASecondFace()
{
    int count = 0;
    for (const ActionRow &row : actionTable()) {
        if (ActionManager::instance()->mrAction(row.action)->alternateText)
            ++count;
        QCOMPARE(bool(secondFace(row.action)),
                 ActionManager::instance()->mrAction(row.action)->alternateText.has_value());
    }
    QCOMPARE(count, 13);
}

void tst_ActionTable::modifiersAreNamedAsShortcutsNameThem()
{
    KeyTranslator translator;
    QVERIFY(QCoreApplication::installTranslator(&translator));
    const QString text = actionText(*actionRow(MR::Action::OffPegs));
    QCoreApplication::removeTranslator(&translator);
    QCOMPARE(text, QStringLiteral("Off Pegs Tool (Hold Umschalt and Strg Keys)"));
}

void tst_ActionTable::frameRateIsWrittenAsTheLocaleDoes()
{
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::German));
    const QString text = actionText(*actionRow(MR::Action::FrameRate12_5));
    QLocale::setDefault(before);
    QCOMPARE(text, QStringLiteral("12,5"));
    QCOMPARE(actionText(*actionRow(MR::Action::FrameRate06)), QStringLiteral("6"));
}

void tst_ActionTable::frameRatesStandInTheirRows()
{
    QList<double> rates;
    for (const ActionRow &row : actionTable()) {
        if (row.group == ActionGroup::FrameRates)
            rates << row.frameRate;
    }
    const QList<double> expected{6, 12, 12.5, 15, 24, 25, 30, 50, 60, 0};
    QCOMPARE(rates, expected);
}

void tst_ActionTable::gridTypesHaveNoShortcut()
{
    for (const auto type : {MR::Action::GridTypeFieldGuide, MR::Action::GridTypeSafety, MR::Action::GridTypeThirds,
                            MR::Action::GridTypeDiagonals, MR::Action::GridTypeRenaissance}) {
        const QAction *action = ActionManager::instance()->action(type);
        QVERIFY(action->shortcuts().isEmpty());
        QCOMPARE(action->toolTip(), action->text());
    }
}

void tst_ActionTable::storedListsFindTheirActionsByKey_data()
{
    QTest::addColumn<QString>("list");
    QTest::newRow("tool bar") << Settings::instance()->toolBarActionList();
    QTest::newRow("primary dial") << Settings::instance()->primaryActionList();
    QTest::newRow("secondary dial") << Settings::instance()->secondaryActionList();
}

// Were the values stored instead of the keys, an action put in between would move all that follow it.
void tst_ActionTable::storedListsFindTheirActionsByKey()
{
    QFETCH(QString, list);
    int found = 0;
    for (const QString &key : list.split(QLatin1Char('|'))) {
        if (key == QLatin1String("Spacer"))
            continue;
        bool isKey = false;
        const int value = QMetaEnum::fromType<MR::Action>().keyToValue(key.toLatin1().constData(), &isKey);
        QVERIFY2(isKey, qPrintable(key));
        const QAction *action = ActionManager::instance()->action(static_cast<MR::Action>(value));
        QVERIFY2(action && action->property("MRActionName") == key, qPrintable(key));
        ++found;
    }
    QVERIFY(found >= 8);
}

void tst_ActionTable::usualShortcutDoesNotAskThePlatform()
{
    for (const Line &line : lines())
        QCOMPARE(portable(usualShortcuts(*actionRow(line.action()))), line.shortcuts());
}

QTEST_MAIN(tst_ActionTable)
#include "tst_actiontable.moc"
