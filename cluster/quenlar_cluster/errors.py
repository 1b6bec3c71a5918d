"""What can go wrong, as the person who started the command is told of it."""


class ClusterError(Exception):
    """Ends the command with status 1; its text is the message."""


class TaskFailed(Exception):
    """A task could not be done this time; the engine tries it again. Travels from worker to coordinator."""
