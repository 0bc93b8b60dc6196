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

constexpr int someFailed = 1;
constexpr int wrongUse = 2;
constexpr int stoppedBySignal = 128; // plus its number

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

int convert(const MapPlan &plan, const MapOptions &options)
{
    const QString problem = plan.prepareFolder();
    if (!problem.isEmpty())
        return refuse(problem);
    const StopSignals stopSignals;
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
    const QCoreApplication application(argc, argv);

    QString problem;
    const std::optional<MapOptions> options = readOptions(QCoreApplication::arguments(), problem);
    if (!options)
        return refuse(problem);
    if (options->action == MapOptions::Action::Help)
        return print(helpText().toUtf8());
    if (options->action == MapOptions::Action::Version)
        return print(versionText().toUtf8());

    const std::optional<MapPlan> plan = MapPlan::made(*options, problem);
    if (!plan)
        return refuse(problem);
    if (options->action == MapOptions::Action::DryRun)
        return dryRun(*plan, options->separator);
    return convert(*plan, *options);
}
