#include "Export.h"

#include "Picture.h"
#include "copies.h"

#include <zorvan/observation/DispatchQueue.h>
#include <zorvan/platform/dispatch/NSOperationQueue.h>

#include <exception>

using namespace zorvan;

std::shared_ptr<Export> Export::start(const std::vector<PictureFile::Pointer>& files,
                                      Settings settings,
                                      std::function<void(const Export&)> didStep) {
    const std::shared_ptr<Export> begun(
        new Export(files.size(), std::move(settings), std::move(didStep)));
    const auto queue = NSOperationQueue::create();
    for (const PictureFile::Pointer& file : files)
        queue->addOperation([begun, file] {
            const bool isWanted = !begun->isCancelled();
            const std::string problem = isWanted ? begun->write(*file) : std::string();
            DispatchQueue::main()->async([begun, problem, isWritten = isWanted && problem.empty()] {
                begun->step(isWritten, problem);
            });
        });
    return begun;
}

std::string Export::write(const PictureFile& file) const {
    try {
        Picture picture(file.url);
        const auto image = picture.thumbnail(settings_.size);
        if (!image)
            return file.title + ": " + picture.facts().error;
        return writeCopy(file.url, settings_.folder, settings_.format,
                         encodedCopy(*image, settings_.format));
    } catch (const std::exception& problem) {
        return file.title + ": " + problem.what();
    }
}

void Export::step(bool isWritten, const std::string& problem) {
    ++done_;
    written_ += isWritten ? 1 : 0;
    if (problem_.empty())
        problem_ = problem;
    didStep_(*this);
}
