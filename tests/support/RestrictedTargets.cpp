#include "RestrictedTargets.h"

#include <csignal>
#include <linux/capability.h>
#include <string>
#include <sys/mount.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace testsupport {
namespace {

constexpr unsigned kOverrideCaps = (1u << CAP_DAC_OVERRIDE) | (1u << CAP_DAC_READ_SEARCH);

bool Capabilities(__user_cap_data_struct (&data)[2], bool bSet) {
    __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
    return syscall(bSet ? SYS_capset : SYS_capget, &header, data) == 0;
}

} // namespace

NoAccessOverride::NoAccessOverride() {
    __user_cap_data_struct data[2]{};
    if (!Capabilities(data, false) || (data[0].effective & kOverrideCaps) == 0) {
        return;
    }
    m_savedEffective = data[0].effective;
    data[0].effective &= ~kOverrideCaps;
    m_bChanged = Capabilities(data, true);
}

NoAccessOverride::~NoAccessOverride() {
    __user_cap_data_struct data[2]{};
    if (m_bChanged && Capabilities(data, false)) {
        data[0].effective = m_savedEffective;
        Capabilities(data, true);
    }
}

SmallVolume::SmallVolume(const std::filesystem::path& folder, unsigned long bytes)
    : m_folder(folder) {
    const std::string options = "size=" + std::to_string(bytes);
    m_bMounted = ::mount("tmpfs", folder.c_str(), "tmpfs", 0, options.c_str()) == 0;
    if (!m_bMounted) {
        getrlimit(RLIMIT_FSIZE, &m_savedLimit);
        m_savedHandler = std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{bytes, m_savedLimit.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
}

SmallVolume::~SmallVolume() {
    if (m_bMounted) {
        ::umount2(m_folder.c_str(), MNT_DETACH);
    } else {
        setrlimit(RLIMIT_FSIZE, &m_savedLimit);
        std::signal(SIGXFSZ, m_savedHandler);
    }
}

} // namespace testsupport
