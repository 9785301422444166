#include <zorvan/platform/security/internal/Failure.h>

#include <zorvan/platform/privatestore/internal/Database.h>

#include <cerrno>
#include <new>
#include <system_error>

namespace zorvan::security {

namespace {

OSStatus statusOf(const privatestore::DatabaseFailure& failure) {
    using Reason = privatestore::DatabaseFailure::Reason;
    switch (failure.reason) {
    case Reason::duplicate:
        return errSecDuplicateItem;
    case Reason::noRoom:
        return errSecDiskFull;
    case Reason::noMemory:
        return errSecAllocate;
    case Reason::tooLarge:
        return errSecDataTooLarge;
    case Reason::inputOutput:
        return errSecIO;
    case Reason::notPermitted:
        return errSecAuthFailed;
    case Reason::notOpened:
    case Reason::damage:
    case Reason::newer:
    case Reason::other:
        break;
    }
    return errSecNotAvailable;
}

OSStatus statusOf(const std::system_error& failure) {
    switch (failure.code().value()) {
    case ENOSPC:
    case EDQUOT:
        return errSecDiskFull;
    case ELOOP:
    case EACCES:
    case EPERM:
        return errSecAuthFailed;
    case ETIMEDOUT:
        return errSecNotAvailable;
    default:
        return errSecIO;
    }
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
        return statusOf(failure);
    } catch (const std::system_error& failure) {
        return statusOf(failure);
    } catch (const std::bad_alloc&) {
        return errSecAllocate;
    }
}

} // namespace zorvan::security
