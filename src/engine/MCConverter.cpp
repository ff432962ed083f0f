#include "MCConverter.h"

#include "MCPreferences.h"
#include "MCToolLog.h"
#include "MCToolProcess.h"

#include <QCoreApplication>
#include <QThread>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStringView>

#include <array>

namespace {

struct LanguageRow
{
    const char16_t *name;
    const char16_t *code2;
    const char16_t *code3;
};

// Language names cut at their first word, so a few repeat ("Ndebele",
// "Norwegian"); a lookup takes the first row of a name.
constexpr std::array<LanguageRow, 185> kLanguageRows{{
    {u"undetermined", u"un", u"und"},
    {u"Abkhazian", u"ab", u"abk"},
    {u"Afar", u"aa", u"aar"},
    {u"Afrikaans", u"af", u"afr"},
    {u"Akan", u"ak", u"aka"},
    {u"Albanian", u"sq", u"sqi"},
    {u"Amharic", u"am", u"amh"},
    {u"Arabic", u"ar", u"ara"},
    {u"Aragonese", u"an", u"arg"},
    {u"Armenian", u"hy", u"hye"},
    {u"Assamese", u"as", u"asm"},
    {u"Avaric", u"av", u"ava"},
    {u"Avestan", u"ae", u"ave"},
    {u"Aymara", u"ay", u"aym"},
    {u"Azerbaijani", u"az", u"aze"},
    {u"Bambara", u"bm", u"bam"},
    {u"Bashkir", u"ba", u"bak"},
    {u"Basque", u"eu", u"eus"},
    {u"Belarusian", u"be", u"bel"},
    {u"Bengali", u"bn", u"ben"},
    {u"Bihari", u"bh", u"bih"},
    {u"Bislama", u"bi", u"bis"},
    {u"Bokmål", u"nb", u"nob"},
    {u"Bosnian", u"bs", u"bos"},
    {u"Breton", u"br", u"bre"},
    {u"Bulgarian", u"bg", u"bul"},
    {u"Burmese", u"my", u"mya"},
    {u"Catalan", u"ca", u"cat"},
    {u"Central", u"km", u"khm"},
    {u"Chamorro", u"ch", u"cha"},
    {u"Chechen", u"ce", u"che"},
    {u"Chichewa", u"ny", u"nya"},
    {u"Chinese", u"zh", u"zho"},
    {u"Church", u"cu", u"chu"},
    {u"Chuvash", u"cv", u"chv"},
    {u"Cornish", u"kw", u"cor"},
    {u"Corsican", u"co", u"cos"},
    {u"Cree", u"cr", u"cre"},
    {u"Croatian", u"hr", u"hrv"},
    {u"Czech", u"cs", u"ces"},
    {u"Danish", u"da", u"dan"},
    {u"Divehi", u"dv", u"div"},
    {u"Dutch", u"nl", u"nld"},
    {u"Dzongkha", u"dz", u"dzo"},
    {u"English", u"en", u"eng"},
    {u"Esperanto", u"eo", u"epo"},
    {u"Estonian", u"et", u"est"},
    {u"Ewe", u"ee", u"ewe"},
    {u"Faroese", u"fo", u"fao"},
    {u"Fijian", u"fj", u"fij"},
    {u"Finnish", u"fi", u"fin"},
    {u"French", u"fr", u"fra"},
    {u"Fulah", u"ff", u"ful"},
    {u"Gaelic", u"gd", u"gla"},
    {u"Galician", u"gl", u"glg"},
    {u"Ganda", u"lg", u"lug"},
    {u"Georgian", u"ka", u"kat"},
    {u"German", u"de", u"deu"},
    {u"Greek", u"el", u"ell"},
    {u"Guarani", u"gn", u"grn"},
    {u"Gujarati", u"gu", u"guj"},
    {u"Haitian", u"ht", u"hat"},
    {u"Hausa", u"ha", u"hau"},
    {u"Hebrew", u"he", u"heb"},
    {u"Herero", u"hz", u"her"},
    {u"Hindi", u"hi", u"hin"},
    {u"Hiri", u"ho", u"hmo"},
    {u"Hungarian", u"hu", u"hun"},
    {u"Icelandic", u"is", u"isl"},
    {u"Ido", u"io", u"ido"},
    {u"Igbo", u"ig", u"ibo"},
    {u"Indonesian", u"id", u"ind"},
    {u"Interlingua", u"ia", u"ina"},
    {u"Interlingue", u"ie", u"ile"},
    {u"Inuktitut", u"iu", u"iku"},
    {u"Inupiaq", u"ik", u"ipk"},
    {u"Irish", u"ga", u"gle"},
    {u"Italian", u"it", u"ita"},
    {u"Japanese", u"ja", u"jpn"},
    {u"Javanese", u"jv", u"jav"},
    {u"Kalaallisut", u"kl", u"kal"},
    {u"Kannada", u"kn", u"kan"},
    {u"Kanuri", u"kr", u"kau"},
    {u"Kashmiri", u"ks", u"kas"},
    {u"Kazakh", u"kk", u"kaz"},
    {u"Kikuyu", u"ki", u"kik"},
    {u"Kinyarwanda", u"rw", u"kin"},
    {u"Kirghiz", u"ky", u"kir"},
    {u"Komi", u"kv", u"kom"},
    {u"Kongo", u"kg", u"kon"},
    {u"Korean", u"ko", u"kor"},
    {u"Kuanyama", u"kj", u"kua"},
    {u"Kurdish", u"ku", u"kur"},
    {u"Lao", u"lo", u"lao"},
    {u"Latin", u"la", u"lat"},
    {u"Latvian", u"lv", u"lav"},
    {u"Limburgan", u"li", u"lim"},
    {u"Lingala", u"ln", u"lin"},
    {u"Lithuanian", u"lt", u"lit"},
    {u"Luba", u"lu", u"lub"},
    {u"Luxembourgish", u"lb", u"ltz"},
    {u"Macedonian", u"mk", u"mkd"},
    {u"Malagasy", u"mg", u"mlg"},
    {u"Malay", u"ms", u"msa"},
    {u"Malayalam", u"ml", u"mal"},
    {u"Maltese", u"mt", u"mlt"},
    {u"Manx", u"gv", u"glv"},
    {u"Maori", u"mi", u"mri"},
    {u"Marathi", u"mr", u"mar"},
    {u"Marshallese", u"mh", u"mah"},
    {u"Mongolian", u"mn", u"mon"},
    {u"Nauru", u"na", u"nau"},
    {u"Navajo", u"nv", u"nav"},
    {u"Ndebele", u"nd", u"nde"},
    {u"Ndebele", u"nr", u"nbl"},
    {u"Ndonga", u"ng", u"ndo"},
    {u"Nepali", u"ne", u"nep"},
    {u"Northern", u"se", u"sme"},
    {u"Norwegian", u"no", u"nor"},
    {u"Norwegian", u"nn", u"nno"},
    {u"Occitan", u"oc", u"oci"},
    {u"Ojibwa", u"oj", u"oji"},
    {u"Oriya", u"or", u"ori"},
    {u"Oromo", u"om", u"orm"},
    {u"Ossetian", u"os", u"oss"},
    {u"Pali", u"pi", u"pli"},
    {u"Panjabi", u"pa", u"pan"},
    {u"Persian", u"fa", u"fas"},
    {u"Polish", u"pl", u"pol"},
    {u"Portuguese", u"pt", u"por"},
    {u"Pushto", u"ps", u"pus"},
    {u"Quechua", u"qu", u"que"},
    {u"Romanian", u"ro", u"ron"},
    {u"Romansh", u"rm", u"roh"},
    {u"Rundi", u"rn", u"run"},
    {u"Russian", u"ru", u"rus"},
    {u"Samoan", u"sm", u"smo"},
    {u"Sango", u"sg", u"sag"},
    {u"Sanskrit", u"sa", u"san"},
    {u"Sardinian", u"sc", u"srd"},
    {u"Serbian", u"sr", u"srp"},
    {u"Shona", u"sn", u"sna"},
    {u"Sichuan", u"ii", u"iii"},
    {u"Sindhi", u"sd", u"snd"},
    {u"Sinhala", u"si", u"sin"},
    {u"Slovak", u"sk", u"slk"},
    {u"Slovenian", u"sl", u"slv"},
    {u"Somali", u"so", u"som"},
    {u"Sotho", u"st", u"sot"},
    {u"Spanish", u"es", u"spa"},
    {u"Sundanese", u"su", u"sun"},
    {u"Swahili", u"sw", u"swa"},
    {u"Swati", u"ss", u"ssw"},
    {u"Swedish", u"sv", u"swe"},
    {u"Tagalog", u"tl", u"tgl"},
    {u"Tahitian", u"ty", u"tah"},
    {u"Tajik", u"tg", u"tgk"},
    {u"Tamil", u"ta", u"tam"},
    {u"Tatar", u"tt", u"tat"},
    {u"Telugu", u"te", u"tel"},
    {u"Thai", u"th", u"tha"},
    {u"Tibetan", u"bo", u"bod"},
    {u"Tigrinya", u"ti", u"tir"},
    {u"Tonga", u"to", u"ton"},
    {u"Tsonga", u"ts", u"tso"},
    {u"Tswana", u"tn", u"tsn"},
    {u"Turkish", u"tr", u"tur"},
    {u"Turkmen", u"tk", u"tuk"},
    {u"Twi", u"tw", u"twi"},
    {u"Uighur", u"ug", u"uig"},
    {u"Ukrainian", u"uk", u"ukr"},
    {u"Urdu", u"ur", u"urd"},
    {u"Uzbek", u"uz", u"uzb"},
    {u"Venda", u"ve", u"ven"},
    {u"Vietnamese", u"vi", u"vie"},
    {u"Volapük", u"vo", u"vol"},
    {u"Walloon", u"wa", u"wln"},
    {u"Welsh", u"cy", u"cym"},
    {u"Western", u"fy", u"fry"},
    {u"Wolof", u"wo", u"wol"},
    {u"Xhosa", u"xh", u"xho"},
    {u"Yiddish", u"yi", u"yid"},
    {u"Yoruba", u"yo", u"yor"},
    {u"Zhuang", u"za", u"zha"},
    {u"Zulu", u"zu", u"zul"},
}};

QUrl folderOf(const QUrl &file)
{
    const QString path = file.toLocalFile();
    if (path.isEmpty())
        return {};
    return QUrl::fromLocalFile(QFileInfo(path).absolutePath());
}

} // namespace

MCConverter::MCConverter()
{
    appPreferences = MCPreferences::applicationPreferences();
    // Every step builds its own copy of the table, as the lookups expect.
    QStringList names;
    QStringList codes2;
    QStringList codes3;
    for (const LanguageRow &row : kLanguageRows) {
        names.append(QString::fromUtf16(row.name));
        codes2.append(QString::fromUtf16(row.code2));
        codes3.append(QString::fromUtf16(row.code3));
    }
    languageList = names;
    languageArrayMatrix.reserve(100);
    for (qsizetype i = 0; i < names.size(); ++i)
        languageArrayMatrix.append({names.at(i), codes2.at(i), codes3.at(i)});
}

MCConverter::~MCConverter() = default;

void MCConverter::ToolDeleter::operator()(MCToolProcess *tool) const
{
    // The process object belongs to the thread that started it; a step may
    // be let go on the monitor thread.
    if (tool->thread() == QThread::currentThread())
        delete tool;
    else
        tool->deleteLater();
}

void MCConverter::initializeFor(const MCSelectionPtr &selection)
{
    converterSelection = selection;
    const MCVideoTrackPtr track = trackToProcess();
    // A step without a track of its own works on the selection's file.
    inputFileURL = track ? track->trackFileURL : (selection ? selection->videoTrackFileURL : QUrl());
    saveDirectoryURL = preferredSaveDirectory(selection ? folderOf(selection->videoTrackFileURL) : QUrl());
    logFileURL = urlInSaveDirectory(QFileInfo(inputFileURL.toLocalFile()).fileName());
    outputFileURL = logFileURL;
    if (appPreferences)
        subtitleFontURL = appPreferences->subtitleFontURL;
}

QString MCConverter::startConversionFor(const MCSelectionPtr &)
{
    return QStringLiteral("Parent");
}

QString MCConverter::monitorConversion()
{
    return {};
}

void MCConverter::inititializeForTrack(int trackIndex, const QString &stepLabel, bool keepingTheOutput)
{
    trackItemToProcess = trackIndex;
    stepName = stepLabel;
    isTemporaryOutput = !keepingTheOutput;
}

QString MCConverter::language2CodeFor(const QString &name) const
{
    for (const QStringList &row : languageArrayMatrix) {
        if (row.at(0) == name)
            return row.at(1);
    }
    return languageArrayMatrix.isEmpty() ? QString() : languageArrayMatrix.first().at(1);
}

QString MCConverter::language3CodeFor(const QString &name) const
{
    for (const QStringList &row : languageArrayMatrix) {
        if (row.at(0) == name)
            return row.at(2);
    }
    return languageArrayMatrix.isEmpty() ? QString() : languageArrayMatrix.first().at(2);
}

bool MCConverter::stringFoundInLog(const QString &text) const
{
    const QString found = doUnixCommand(QStringLiteral("tr '\\r' '\\n' < "),
                                        {logFileURL, QStringLiteral("| tail -20"),
                                         QStringLiteral("| grep %1").arg(singleQuotedFormOf(text))});
    return found.contains(text);
}

void MCConverter::determineSaveDirectoryURL()
{
    saveDirectoryURL = preferredSaveDirectory(folderOf(inputFileURL));
}

QString MCConverter::checkForErrorsInOutputURL(const QUrl &, const QUrl &) const
{
    return QString();
}

MCVideoTrackPtr MCConverter::trackToProcess() const
{
    if (!converterSelection || trackItemToProcess < 0 || trackItemToProcess >= converterSelection->trackList.size())
        return nullptr;
    return converterSelection->trackList.at(trackItemToProcess);
}

QString MCConverter::lastLogLine() const
{
    return lastLineOfFile(logFileURL.toLocalFile());
}

QString MCConverter::lastLineOfFile(const QString &path)
{
    QFile log(path);
    if (path.isEmpty() || !log.open(QIODevice::ReadOnly))
        return {};
    // A progress line is short; the tail of a long log is enough.
    constexpr qint64 kTail = 64 * 1024;
    if (log.size() > kTail)
        log.seek(log.size() - kTail);
    QByteArray text = log.readAll();
    text.replace('\r', '\n');
    if (text.endsWith('\n'))
        text.chop(1);
    return decodeToolOutput(text.mid(text.lastIndexOf('\n') + 1));
}

namespace {
MCConverter::CommandRecorder &commandRecorder()
{
    static MCConverter::CommandRecorder recorder;
    return recorder;
}
} // namespace

void MCConverter::setCommandRecorder(CommandRecorder recorder)
{
    commandRecorder() = std::move(recorder);
}

bool MCConverter::isRecordingCommands()
{
    return static_cast<bool>(commandRecorder());
}

QString MCConverter::launchInBackground(const QUrl &tool, const MCOptionList &options)
{
    const QString command = commandFromOptions(headForTool(tool, options), options);
    doShell_ID.clear();
    if (const CommandRecorder &recorder = commandRecorder()) {
        recorder(command);
        return QStringLiteral("error");
    }
    m_toolName = QFileInfo(tool.toLocalFile()).fileName();
    if (!fileExistsAtURL(tool))
        return refuse(QStringLiteral("the tool \"%1\" is missing from Kestrane's resource folder").arg(m_toolName));
    // Tools start in the folder that holds Kestrane's executable folder.
    const QString workingDirectory = QCoreApplication::instance()
                                         ? QDir(QCoreApplication::applicationDirPath() + QStringLiteral("/..")).absolutePath()
                                         : QString();
    m_tool.reset(new MCToolProcess);
    if (onToolEnded)
        QObject::connect(m_tool.get(), &MCToolProcess::ended, m_tool.get(), onToolEnded);
    if (!m_tool->start(MCToolProcess::foregroundCommand(command, doubleQuotedFormOf(tool.toLocalFile())),
                       workingDirectory))
        return refuse(QStringLiteral("%1 could not be started: %2").arg(m_toolName, m_tool->errorText()));
    doShell_ID = QString::number(m_tool->processId());
    return doShell_ID;
}

QString MCConverter::refuse(const QString &reason)
{
    m_refusal = reason;
    doShell_ID.clear();
    return QStringLiteral("error");
}

bool MCConverter::toolIsRunning() const
{
    return m_tool && m_tool->isRunning();
}

bool MCConverter::toolWasStarted() const
{
    return m_tool != nullptr;
}

QString MCConverter::failureReason() const
{
    if (!m_refusal.isEmpty())
        return m_refusal;
    if (!m_tool || !m_tool->hasEnded())
        return {};
    if (!m_tool->crashed() && exitCodeMeansSuccess(m_tool->exitCode()))
        return {};
    const QString how = m_tool->crashed() ? QStringLiteral("%1 was stopped by a signal").arg(m_toolName)
                                          : QStringLiteral("%1 ended with exit status %2").arg(m_toolName).arg(m_tool->exitCode());
    const QString said = MCToolLog::failureSummary(MCToolLog::tailLines(logFileURL.toLocalFile()));
    return said.isEmpty() ? how : QStringLiteral("%1: %2").arg(how, said);
}

QStringList MCConverter::resultPaths() const
{
    if (isTemporaryOutput || outputFileURL.isEmpty() || !toolWasStarted())
        return {};
    const QFileInfo output(outputFileURL.toLocalFile());
    if (output.exists() || stagingFolder.isEmpty() || output.absolutePath() != stagingFolder)
        return {output.filePath()};
    // Tools that cut a file into pieces number them after the output's name
    // ("movie.avi.split-0000.avi", "movie.mkv.split-001.mkv"). Only this
    // job writes into its private folder, so every such piece is ours.
    QStringList pieces;
    const QString pattern = output.completeBaseName() + QStringLiteral("-*.") + output.suffix();
    for (const QFileInfo &piece : QDir(stagingFolder).entryInfoList({pattern}, QDir::Files, QDir::Name))
        pieces << piece.absoluteFilePath();
    return pieces.isEmpty() ? QStringList{output.filePath()} : pieces;
}

void MCConverter::signalTool(int signalNumber) const
{
    if (m_tool)
        m_tool->signalGroup(signalNumber);
}

void MCConverter::stopTool(int graceMs)
{
    if (m_tool)
        m_tool->terminate(graceMs);
}

QUrl MCConverter::preferredSaveDirectory(const QUrl &fallbackFolder) const
{
    if (!stagingFolder.isEmpty())
        return QUrl::fromLocalFile(stagingFolder);
    if (appPreferences && !appPreferences->saveDirectoryURL.toLocalFile().isEmpty())
        return appPreferences->saveDirectoryURL;
    return fallbackFolder;
}

QUrl MCConverter::urlInSaveDirectory(const QString &name) const
{
    const QString folder = saveDirectoryURL.toLocalFile();
    return QUrl::fromLocalFile(QDir(folder.isEmpty() ? QStringLiteral(".") : folder).filePath(name));
}
