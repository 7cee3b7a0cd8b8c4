// SPDX-License-Identifier: Apache-2.0
#include "framework/Corvexpackagemanager.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QLibrary>

#include <dlfcn.h>

#include <stdexcept>

namespace {

QStringList &ExtraFolders()
{
    static QStringList folders;
    return folders;
}

QString FrameworkFolder()
{
    Dl_info info{};
    if (dladdr(reinterpret_cast<void *>(&LoadPackage), &info) == 0 || !info.dli_fname)
        return {};
    return QFileInfo(QString::fromLocal8Bit(info.dli_fname)).absolutePath();
}

void RunEntryPoint(QLibrary &library, const char *name)
{
    using TEntryPoint = void (*)();
    if (const auto entry = reinterpret_cast<TEntryPoint>(library.resolve(name)))
        entry();
}

} // namespace

int TPackageList::IndexOf(const QString &name) const
{
    for (int i = 0; i < names_.size(); ++i) {
        if (names_[i].compare(name, Qt::CaseInsensitive) == 0)
            return i;
    }
    return -1;
}

void TPackageList::AddObject(const QString &name, TModuleHandle handle)
{
    names_.append(name);
    handles_.append(handle);
}

TModuleHandle TPackageList::Objects(int index) const
{
    if (index < 0 || index >= handles_.size())
        throw std::out_of_range("No package at this position.");
    return handles_[index];
}

TPackageList &GlobalPackageList()
{
    static TPackageList list;
    return list;
}

void AddPackageFolder(const QString &folder)
{
    ExtraFolders().append(folder);
}

TModuleHandle LoadPackage(const QString &name)
{
    const QStringList folders = ExtraFolders() + QStringList{QCoreApplication::applicationDirPath(), FrameworkFolder()};
    QString tried;
    for (const QString &folder : folders) {
        const QFileInfo file(folder + QLatin1Char('/') + name);
        if (!file.exists()) {
            tried += QStringLiteral("\n") + file.absoluteFilePath();
            continue;
        }
        // The handle lives as long as the application; the code itself stays even longer.
        auto *library = new QLibrary(file.absoluteFilePath(), QCoreApplication::instance());
        library->setLoadHints(QLibrary::PreventUnloadHint | QLibrary::ResolveAllSymbolsHint);
        if (!library->load()) {
            const QString reason = library->errorString();
            delete library;
            throw std::runtime_error(reason.toStdString());
        }
        RunEntryPoint(*library, "Initialize");
        return library;
    }
    throw std::runtime_error(
        QStringLiteral("The package %1 was not found. Looked for:%2").arg(name, tried).toStdString());
}

void FinalizePackage(TModuleHandle handle)
{
    if (handle)
        RunEntryPoint(*handle, "Finalize");
}
