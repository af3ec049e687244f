"""What a batch gives up with."""


class BatchError(Exception):
    """The data, the store or the workers do not allow what was asked; one line that names the file and the remedy."""

    exitCode = 1


class BatchUsageError(BatchError):
    """The job cannot be meant as it was asked for."""

    exitCode = 2


class StoreFullError(BatchError):
    """The disk of the store stayed full for as long as the job was to wait."""
