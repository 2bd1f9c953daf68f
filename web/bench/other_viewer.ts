// The same lines as DXF in npm's dxf-viewer: a page of its own that draws a file given to it.

import { DxfViewer } from "dxf-viewer";

declare global {
    interface Window {
        drawDxf(file: File): Promise<number>;
    }
}

// Milliseconds until the first picture.
window.drawDxf = async (file) => {
    const began = performance.now();
    const viewer = new DxfViewer(document.body, { canvasWidth: 1280, canvasHeight: 800 } as never);
    if (!viewer.HasRenderer()) throw new Error("it has no WebGL here");
    await viewer.Load({ url: URL.createObjectURL(file) } as never);
    viewer.Render();
    await new Promise(requestAnimationFrame);
    return performance.now() - began;
};
