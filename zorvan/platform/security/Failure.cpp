#include <zorvan/platform/security/internal/Failure.h>

#include <zorvan/platform/privatestore/internal/Database.h>

#include <cerrno>
#include <new>
#include <system_error>
#include <utility>

namespace zorvan::security {

namespace {

using Reason = privatestore::DatabaseFailure::Reason;

constexpr std::pair<Reason, OSStatus> ofReasons[] = {
    {Reason::duplicate, errSecDuplicateItem}, {Reason::noRoom, errSecDiskFull},
    {Reason::noMemory, errSecAllocate},       {Reason::tooLarge, errSecDataTooLarge},
    {Reason::inputOutput, errSecIO},          {Reason::notPermitted, errSecAuthFailed},
};

constexpr std::pair<int, OSStatus> ofErrors[] = {
    {ENOSPC, errSecDiskFull},   {EDQUOT, errSecDiskFull},  {ELOOP, errSecAuthFailed},
    {EACCES, errSecAuthFailed}, {EPERM, errSecAuthFailed}, {ETIMEDOUT, errSecNotAvailable},
};

template <class Statuses, class Cause>
OSStatus statusIn(const Statuses& statuses, Cause cause, OSStatus ofOthers) {
    for (const auto& [known, status] : statuses)
        if (known == cause)
            return status;
    return ofOthers;
}

} // namespace

OSStatus statusOfException() {
    try {
        throw;
    } catch (const Failure& failure) {
        return failure.status;
    } catch (const privatestore::Refusal&) {
        return errSecAuthFailed;
    } catch (const privatestore::DatabaseFailure& failure) {
        return statusIn(ofReasons, failure.reason, errSecNotAvailable);
    } catch (const std::system_error& failure) {
        return statusIn(ofErrors, failure.code().value(), errSecIO);
    } catch (const std::bad_alloc&) {
        return errSecAllocate;
    }
}

} // namespace zorvan::security
