#include "circlesearch.h"
#include "exitstatus.h"
#include "filenamecodec.h"
#include "helptext.h"
#include "mapoptions.h"
#include "mapplan.h"
#include "maprun.h"
#include "report.h"
#include "stopsignals.h"

#include <QCoreApplication>
#include <QFile>

#include <cstdio>

namespace
{

/// The toolkit's own warnings, about a damaged picture for instance; reasons are reported where they count.
void ignoreMessage(QtMsgType, const QMessageLogContext &, const QString &)
{
}

/// The decoders' own complaints, which go to C's stream past the toolkit: one line for each failure is enough. The
/// descriptor, through which everything of ours is written, stays.
void silenceDecoders()
{
#ifdef __GLIBC__ // elsewhere the stream cannot be replaced
    if (std::FILE *nowhere = std::fopen("/dev/null", "w"))
        stderr = nowhere;
#endif
}

int print(const QByteArray &text)
{
    const bool written = std::fwrite(text.constData(), 1, size_t(text.size()), stdout) == size_t(text.size());
    return written && std::fflush(stdout) == 0 ? 0 : someFailed;
}

int refuse(const QString &problem)
{
    printProblem(problem);
    return wrongUse;
}

int dryRun(const MapPlan &plan, Separator separator)
{
    const bool nulls = separator == Separator::Null;
    for (int i = 0; i < plan.count(); ++i) {
        const MapJob job = plan.job(i);
        const int status = print(QFile::encodeName(job.photograph) + (nulls ? '\0' : '\t') +
                                 QFile::encodeName(job.map) + (nulls ? '\0' : '\n'));
        if (status != 0)
            return status;
    }
    return 0;
}

/// Replaces a circle that is sought once for all photographs by the one that is found.
/// @return whether there is one, or none is needed
bool findCircleOnce(MapOptions &options)
{
    const auto *sought = std::get_if<SoughtCircle>(&options.circle);
    if (!sought || !sought->once || options.photographs.size() == 0)
        return true;
    const std::optional<FoundDisc> disc = discOfList(options);
    if (disc)
        options.circle = selectionCircle(*disc);
    return disc.has_value();
}

int convert(const MapPlan &plan, MapOptions &options)
{
    const StopSignals stopSignals;
    if (!findCircleOnce(options) && StopSignals::received() == 0) {
        printProblem(
            QStringLiteral("no disc found on any of the first %1 photographs").arg(searchedForMedian));
        return someFailed;
    }
    const QString problem = plan.prepareFolder();
    if (!problem.isEmpty())
        return refuse(problem);
    bool readerGone = false;
    int status = 0;
    {
        Report report(plan.count(), options.separator,
                      options.quiet            ? Report::ProgressLine::Never
                      : options.progressAlways ? Report::ProgressLine::Always
                                               : Report::ProgressLine::OnTerminal);
        runPlan(plan, options, report);
        readerGone = report.isReaderGone();
        status = report.failures() > 0 || report.isOutputLost() ? someFailed : 0;
    }
    if (StopSignals::received() != 0)
        return stoppedBySignal + StopSignals::received();
    if (readerGone)
        endByBrokenPipe();
    return status;
}

} // namespace

int main(int argc, char *argv[])
{
    qInstallMessageHandler(ignoreMessage);
    silenceDecoders();
    // No thread of ours handles events; glib's dispatcher, which each would get, ends the program where memory is short.
    qputenv("QT_NO_GLIB", "1");
    useFileNameCodec();
    // The resolution of an image, which maps have in their files: that of every display whose scale the window follows.
    QCoreApplication::setAttribute(Qt::AA_Use96Dpi);
    const QCoreApplication application(argc, argv);

    QString problem;
    std::optional<MapOptions> options = readOptions(QCoreApplication::arguments(), problem);
    if (!options)
        return refuse(problem);
    if (options->action == MapOptions::Action::Help)
        return print(helpText().toUtf8());
    if (options->action == MapOptions::Action::Version)
        return print(versionText().toUtf8());
    if (options->action == MapOptions::Action::FindCircles)
        return findCircles(*options);

    const std::optional<MapPlan> plan = MapPlan::made(*options, problem);
    if (!plan)
        return refuse(problem);
    if (options->action == MapOptions::Action::DryRun)
        return dryRun(*plan, options->separator);
    return convert(*plan, *options);
}
