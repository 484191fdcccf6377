#include "tembrakey/io/library_files.h"

#include "tembrakey/io/failure.h"
#include "tembrakey/platform/files.h"
#include "tembrakey/platform/process.h"
#include "tembrakey/text/text.h"

namespace tembra::tool {

std::vector<std::string> librariesNearTool(const std::string &name) {
    const std::string folder = platform::executableFolder();
    const std::string file = platform::libraryFileName(name);
    return {folder + "/" + file, folder + "/../lib/" + file};
}

std::string firstReadable(const std::vector<std::string> &paths, const std::string &what,
                          const std::string &advice) {
    std::string places;
    for (const std::string &path : paths) {
        if (platform::isReadable(path))
            return path;
        places += (places.empty() ? "" : ", ") + path;
    }
    throw Failure(ExitCode::noProvider,
                  tr("cannot find {1}; looked for {2}; {3}", {what, places, advice}));
}

} // namespace tembra::tool
