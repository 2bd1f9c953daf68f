"""What GDAL reports."""

from osgeo import gdal


class Messages:
    """What the driver reports to GDAL while the block runs."""

    def __enter__(self):
        self.list = []
        gdal.PushErrorHandler(lambda severity, number, text: self.list.append((severity, text)))
        return self

    def __exit__(self, *_):
        gdal.PopErrorHandler()

    def texts(self, severity):
        return [text for kind, text in self.list if kind == severity]
